// The menu of a line, which acts on the line that was clicked, whichever is chosen.

#include "app/desktop/Texts.h"
#include "app/desktop/sheets/Sheets.h"
#include "app/desktop/sidebar/Locating.h"
#include "app/desktop/sidebar/NodeMenu.h"
#include "app/desktop/sidebar/Sidebar.h"
#include "app/desktop/window/NewLines.h"
#include "app/view/SidebarActions.h"

#include <QContextMenuEvent>
#include <QFileDialog>
#include <QMenu>

namespace korvo {

namespace {

using Kind = SidebarNode::Kind;

} // namespace

/// "Move to", with all that the line can be moved into, and its places among its siblings.
void Sidebar::addPlaces(QMenu& menu, const SidebarKey& what)
{
    const auto move = [this, what](const SidebarNode& place) {
        desktop_.attempt([&] { moveLine(desktop_.store(), what, {place.kind, place.id}); });
    };
    const auto places = placesFor(sidebarTree(desktop_.store().tree()), what);
    if (!places.empty())
        addNodes(
            *menu.addMenu("Move to"), places, [](const SidebarNode&) { return true; }, move);
    if (!isOrdered(what.kind))
        return;
    const auto step = [this, what](int lines) {
        return [this, what, lines] { desktop_.attempt([&] { stepLine(desktop_.store(), what, lines); }); };
    };
    menu.addAction("Move Up", QKeySequence(Qt::ALT | Qt::Key_Up), step(-1));
    menu.addAction("Move Down", QKeySequence(Qt::ALT | Qt::Key_Down), step(1));
}

/// What can be made, in the line that was clicked.
void Sidebar::addNew(QMenu& menu, const SidebarKey& where)
{
    auto& commands = window_.commands();
    const auto add = [&](Command command, const Commands::Handler& make) {
        menu.addAction(
            commands.action(command)->text(), [&commands, command, make] { commands.run(command, make); });
    };
    const auto project = projectAt(desktop_.store().tree(), where);
    const auto keyword = where.kind == Kind::keyword ? std::optional(where.id) : std::nullopt;
    add(Command::newProject, [this, project] { newProject(window_, project); });
    add(Command::newAlbum, [this, project] { newAlbum(window_, project); });
    menu.addAction(commands.action(Command::newSmartAlbum));
    add(Command::newKeyword, [this, keyword] { newKeyword(window_, keyword); });
    menu.addAction(commands.action(Command::addFolder));
}

/// For a folder that was moved or renamed on disk.
void Sidebar::locate(std::int64_t folder)
{
    const QString place = QFileDialog::getExistingDirectory(&window_, "Locate Folder");
    if (!place.isEmpty())
        locateInBackground(desktop_, folder, pathOf(place));
}

void Sidebar::contextMenuEvent(QContextMenuEvent* event)
{
    auto* const item = event->reason() == QContextMenuEvent::Keyboard ? currentItem() : itemAt(event->pos());
    const auto key = item ? keyOf(*item) : SidebarKey();
    QMenu menu(this);
    if (canBeRenamed(key.kind))
        menu.addAction("Rename", QKeySequence(Qt::Key_F2), [this, key] {
            if (auto* const line = itemOf(key)) // another process may have taken it away meanwhile
                editItem(line, 0);
        });
    addPlaces(menu, key);
    if (key.kind == Kind::smartAlbum)
        menu.addAction("Edit Smart Album…", [this, key] { showSmartAlbumSheet(window_, key.id); });
    if (key.kind == Kind::folder)
        menu.addAction("Locate Folder…", [this, key] { locate(key.id); });
    if (canBeDeleted(key.kind)) {
        const QString verb = key.kind == Kind::folder ? "Remove from Library…" : "Delete";
        menu.addAction(verb, QKeySequence(Qt::Key_Delete), [this, key] {
            if (const auto* const line = itemOf(key))
                remove(*line);
        });
    }
    if (!menu.isEmpty())
        menu.addSeparator();
    addNew(menu, key);
    menu.exec(event->globalPos());
}

} // namespace korvo
