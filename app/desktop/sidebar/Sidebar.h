#pragma once

#include "app/SidebarTree.h"
#include "app/desktop/MainWindow.h"

#include <QTimer>
#include <QTreeWidget>

class QLineEdit;

namespace korvo {

/// The lines of the sidebar. It shows what the store says, and is told of nothing else.
class Sidebar : public QTreeWidget {
public:
    explicit Sidebar(MainWindow& window);

    /// Shows only lines that hold the text, and those above them.
    void filter(const QString& text);
    /// Opens the field for a new name on the chosen line.
    void renameChosen();
    bool canRenameChosen() const;

    std::function<void(const std::string&)>
        keywordChosen; ///< a keyword was chosen, to be searched for; empty: no longer

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void refill();
    void sync(QTreeWidgetItem& parent, const std::vector<SidebarNode>& nodes);
    void show(QTreeWidgetItem& item, const SidebarNode& node);
    void showSource();
    void choose(QTreeWidgetItem* item, QTreeWidgetItem* before);
    void renamed(QTreeWidgetItem* item);
    void remove(const SidebarKey& key, const QString& name);
    QTreeWidgetItem* itemOf(const SidebarKey& key) const;

    MainWindow& window_;
    Desktop& desktop_;
    QTimer refillTimer_; // once for all that changes at a time
    bool filling_ = false;
    QString filter_;
    Connection storeChanged_;
};

} // namespace korvo
