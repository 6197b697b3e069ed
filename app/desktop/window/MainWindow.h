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

class GridView;
class Sidebar;

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
    void setSidebar(QWidget* widget, Sidebar& sidebar);
    void setGrid(GridView* grid);
    /// What the centre shows in a mode; the same widget may serve several. The browser's mode chooses among
    /// them, and the one that is shown gets the focus.
    void setCentre(ViewMode mode, QWidget* widget);
    /// Shown below the centre, unless it is the grid that is shown.
    void setFilmstrip(QWidget* widget);
    void addInspectorTab(const QString& title, QWidget* widget);

    /// Which sides are shown and how wide they are, as bytes to be kept.
    QByteArray saveSides() const;
    void restoreSides(const QByteArray& bytes);

    /// Takes dropped files and folders into the library.
    void addDropped(const QMimeData& dropped, const std::optional<SidebarNode>& onto = std::nullopt);

    /// A menu at a place of the screen, for the photos that commands act on. Returns when it has gone.
    void showPhotoMenu(QPoint at);

    // Parts that others ask for
    GridView& grid() const { return *grid_; }
    Sidebar& sidebar() const { return *lines_; }

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
    /// Closes the window when the step that is running has gone well.
    void closeAfter(const std::string& step);
    void showMode();
    void leaveFieldOrCentre();
    void cycleModes();
    struct Sides {
        bool sidebar = true, inspector = true;
    };
    void toggleSides();
    void showSides(Sides sides);
    void setFilmstripWanted(bool wanted);
    void toggle(Command command, QWidget* widget);

    Desktop& desktop_;
    Commands commands_;
    Notices notices_;
    QSplitter* columns_;
    QSplitter* middle_;
    QStackedWidget* stack_;
    QTabWidget* inspector_;
    QWidget* sidebar_ = nullptr; // with its filter
    Sidebar* lines_ = nullptr;
    GridView* grid_ = nullptr;
    QWidget* filmstrip_ = nullptr;
    bool filmstripWanted_ = true;
    Sides hiddenSides_; // to be shown again together
    std::array<QWidget*, 5> centres_{}; // by mode
    WindowMemory memory_{*this};
    QTimer otherProcesses_; // when to look for what they have changed
    bool closesAfterStep_ = false;
    Connection browserChanged_, stepEnded_;
};

} // namespace korvo
