#pragma once

#include "app/desktop/window/MainWindow.h"
#include "app/view/SidebarTree.h"

#include <QTimer>
#include <QTreeWidget>

#include <set>

class QMenu;

namespace korvo {

/// Where a line keeps which one it is.
namespace sidebarRole {
inline constexpr int kind = Qt::UserRole, id = Qt::UserRole + 1;
} // namespace sidebarRole

SidebarKey keyOf(const QTreeWidgetItem& item);

/// The lines of the sidebar. It shows what the store says, and is told of nothing else.
class Sidebar : public QTreeWidget {
public:
    explicit Sidebar(MainWindow& window);

    /// Shows only lines that hold the text, and those above them.
    void filter(const QString& text);
    /// Opens the field for a new name on the chosen line.
    void renameChosen();
    bool canRenameChosen() const;
    /// The keyword that is chosen, below which new ones belong.
    std::optional<std::int64_t> chosenKeyword() const;

    /// Which lines are open, as text to be kept.
    std::string openLines() const;
    void restoreOpenLines(const std::string& text);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void startDrag(Qt::DropActions actions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void refill();
    void sync(QTreeWidgetItem& parent, const std::vector<SidebarNode>& nodes);
    void show(QTreeWidgetItem& item, const SidebarNode& node);
    void addPlaces(QMenu& menu, const SidebarKey& what);
    void addNew(QMenu& menu, const SidebarKey& where);
    void locate(std::int64_t folder);
    /// Where a drop would go.
    struct Place {
        SidebarKey line;
        DropAt at;
    };
    std::optional<Place> placeOf(const QDropEvent& event) const;
    void mark(std::optional<Place> place);
    SidebarNode nodeOf(const SidebarKey& line) const;
    void tellOfFiles(const QPoint& at) const;
    void openLater(const QTreeWidgetItem* item);
    std::set<SidebarKey> open() const;
    void setOpen(const std::set<SidebarKey>& keys);
    void showSource();
    void choose(QTreeWidgetItem* item, QTreeWidgetItem* before);
    void searchKeyword(const std::string& keyword);
    void renamed(QTreeWidgetItem* item);
    void remove(const QTreeWidgetItem& item);
    QTreeWidgetItem* itemOf(const SidebarKey& key) const;

    MainWindow& window_;
    Desktop& desktop_;
    QTimer refillTimer_; // once for all that changes at a time
    bool filling_ = false;
    std::optional<Place> marked_; // while something is dragged over it
    std::optional<SidebarKey> under_; // the line that it is over
    QTimer openTimer_; // Qt's own waits only for what is dragged from here, and closes open lines
    std::string searched_; // the keyword that is searched for
    QString filter_;
    std::set<SidebarKey> openBeforeFilter_; // which opens what holds a line that it shows
    Connection storeChanged_;
};

} // namespace korvo
