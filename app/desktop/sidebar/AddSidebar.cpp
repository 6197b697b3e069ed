#include "app/desktop/Texts.h"
#include "app/desktop/sheets/Sheets.h"
#include "app/desktop/sidebar/NodeMenu.h"
#include "app/desktop/sidebar/Sidebar.h"
#include "app/desktop/window/NewLines.h"
#include "app/desktop/window/Parts.h"
#include "app/desktop/window/Versions.h"
#include "app/view/SidebarActions.h"

#include <QLineEdit>
#include <QMenu>
#include <QVBoxLayout>

namespace korvo {

namespace {

/// "Add to" in the Photo menu: what takes photos, as it stands when the menu opens.
void addAddTo(MainWindow& window)
{
    auto* const menu = new QMenu(&window);
    window.commands().action(Command::addTo)->setMenu(menu);
    QObject::connect(menu, &QMenu::aboutToShow, &window, [&window, menu] {
        auto& desktop = window.desktop();
        menu->clear();
        qDeleteAll(menu->findChildren<QMenu*>(Qt::FindDirectChildrenOnly)); // which are not cleared
        addNodes(
            *menu, sidebarTree(desktop.store().tree()),
            [](const SidebarNode& node) {
                return takesPhotos({node.kind, node.id});
            },
            [&window, &desktop](const SidebarNode& node) {
                if (!window.commands().settleForPhotos()) // as before every command
                    return;
                desktop.attempt([&] {
                    desktop.say(dropPhotos(desktop.store(), node, desktop.browser().targets()), Offer::undo);
                });
            });
    });
    window.commands().handle(Command::addTo, [] {}); // the menu does it
}

} // namespace

void addSidebar(MainWindow& window)
{
    auto* const place = new QWidget;
    place->setMinimumWidth(170);
    auto* const layout = new QVBoxLayout(place);
    layout->setContentsMargins(6, 6, 6, 0);
    auto* const filter = new QLineEdit;
    filter->setPlaceholderText("Filter");
    filter->setAccessibleName("Filter of the sources");
    filter->setClearButtonEnabled(true);
    auto* const sidebar = new Sidebar(window);
    QObject::connect(
        filter, &QLineEdit::textChanged, sidebar, [sidebar](const QString& text) { sidebar->filter(text); });
    layout->addWidget(filter);
    layout->addWidget(sidebar);
    window.setSidebar(place, *sidebar);
    addAddTo(window);
    window.commands().handle(
        Command::newKeyword, [&window, sidebar] { newKeyword(window, sidebar->chosenKeyword()); });
    auto& store = window.desktop().store();
    const auto isSmartAlbum
        = [&store] { return store.source() && store.source()->kind == LibrarySource::Kind::smartAlbum; };
    window.commands().handle(
        Command::editSmartAlbum, [&window, &store] { showSmartAlbumSheet(window, store.source()->id); },
        isSmartAlbum);
    window.commands().handle(
        Command::rename,
        [&window, sidebar] {
            if (const auto version = currentVersion(window.desktop()); version && !sidebar->hasFocus())
                renameVersion(window, *version);
            else
                sidebar->renameChosen();
        },
        [&window, sidebar] { return sidebar->canRenameChosen() || currentVersion(window.desktop()); });
}

} // namespace korvo
