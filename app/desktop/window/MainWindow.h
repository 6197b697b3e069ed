#pragma once

#include "app/desktop/window/Notices.h"
#include "app/desktop/window/WindowMemory.h"
#include "app/view/SidebarTree.h"

#include <QMainWindow>
#include <QTimer>

class QMimeData;
class QSplitter;
class QStackedWidget;
class QTabWidget;

namespace korvo {

/// The window of one library: a toolbar, the sidebar, the centre with the filmstrip below it, the inspector,
/// the status line. Each part brings its widgets and commands by a function of Parts.h.
class MainWindow : public QMainWindow {
public:
    explicit MainWindow(Desktop& desktop);
    ~MainWindow() override;

    Desktop& desktop() { return desktop_; }
    Commands& commands() { return commands_; }
    Notices& notices() { return notices_; }
    WindowMemory& memory() { return memory_; }

    // Places. Each takes ownership of the widget.
    void setSidebar(QWidget* widget);
    /// What the centre shows in a mode; the same widget may serve several. The browser's mode chooses among
    /// them, and the one that is shown gets the focus.
    void setCentre(ViewMode mode, QWidget* widget);
    /// Shown below the centre, unless it is the grid that is shown.
    void setFilmstrip(QWidget* widget);
    void addInspectorTab(const QString& title, QWidget* widget);

    /// Which sides are shown and how wide they are, as bytes to be kept.
    QByteArray saveSides() const;
    void restoreSides(const QByteArray& bytes);

    /// Searches all photos for these words, as if they were typed into the search field.
    void search(const std::string& words);
    /// Searches no longer, if these are still the words.
    void endSearch(const std::string& words);
    std::function<void(const std::string&)> setSearchField; ///< set by the toolbar
    std::function<std::string()> searchField; ///< set by the toolbar
    /// Takes dropped files and folders into the library.
    void addDropped(const QMimeData& dropped, const std::optional<SidebarNode>& onto = std::nullopt);

    /// A menu at a place of the screen, for the photos that commands act on. Returns when it has gone.
    void showPhotoMenu(QPoint at);

    /// The widget the centre shows now, for the focus.
    QWidget* centre() const;
    /// Shows or hides a part of the window. What has the focus in it leaves it to the centre, not to whatever
    /// field comes next, which would take the next key for a text.
    void setShown(QWidget& part, bool isShown);

    /// Ends the program without a question, as when the system goes down: what is being typed is stored, the
    /// window is remembered, and jobs stop.
    void quitUnasked();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void makeCommands();
    void showMode();
    void leaveFieldOrCentre();
    void cycleModes();
    struct Sides {
        bool sidebar = true, inspector = true;
    };
    void toggleSides();
    void showSides(Sides sides);
    void wantFilmstrip(bool wanted);
    void toggle(Command command, QWidget* widget);

    Desktop& desktop_;
    Commands commands_;
    Notices notices_;
    QSplitter* columns_;
    QSplitter* middle_;
    QStackedWidget* stack_;
    QTabWidget* inspector_;
    QWidget* sidebar_ = nullptr;
    QWidget* filmstrip_ = nullptr;
    bool filmstripWanted_ = true;
    Sides hiddenSides_; // to be shown again together
    std::array<QWidget*, 5> centres_{}; // by mode
    WindowMemory memory_{*this};
    QTimer otherProcesses_; // when to look for what they have changed
    Connection browserChanged_;
};

} // namespace korvo
