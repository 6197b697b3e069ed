// Choosing photos, ordering them by hand, and taking them out.

#include "app/desktop/Ask.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"
#include "app/view/AlbumOrder.h"
#include "app/view/Marking.h"
#include "base/Text.h"
#include "catalog/store/LibraryActions.h"

#include <QDesktopServices>
#include <QFile>
#include <QUrl>

#include <set>

namespace korvo {

namespace {

/// "Their 2 versions go along. ", or nothing.
std::string whatGoesAlong(Catalog& catalog, const std::vector<PhotoID>& ids)
{
    const std::set<PhotoID> named(ids.begin(), ids.end());
    std::set<PhotoID> all;
    for (const PhotoID id : catalog.withVersions(ids))
        all.insert(id);
    const auto others = static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [&](PhotoID id) { return !named.contains(id); }));
    if (others == 0)
        return {};
    return (ids.size() == 1 ? "Its " : "Their ") + counted(others, "version")
        + (others == 1 ? " goes" : " go") + " along. ";
}

void removeFromLibrary(MainWindow& window)
{
    auto& store = window.desktop().store();
    const auto ids = window.desktop().browser().targets();
    const auto title = "Remove " + counted(ids.size(), "photo") + " from the library?";
    const auto details = whatGoesAlong(store.catalog(), ids) + "The files stay where they are on disk.";
    if (!ask(window, qt(title), qt(details), "Remove"))
        return;
    removePhotos(store, ids);
    window.desktop().say("Removed " + counted(ids.size(), "photo") + " from the library.", Offer::undo);
}

void selectAll(LibraryStore& store)
{
    std::vector<PhotoID> ids;
    ids.reserve(store.list().shown().size());
    for (const auto position : store.list().shown())
        ids.push_back(store.list().items()[position].id);
    store.select(std::move(ids));
}

void showInFolder(Desktop& desktop)
{
    if (const auto* const item = desktop.store().list().find(desktop.browser().targets().front()))
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFile::decodeName(item->path().parent_path().c_str())));
}

} // namespace

void addPhotoCommands(MainWindow& window)
{
    auto& commands = window.commands();
    auto& desktop = window.desktop();
    auto& store = desktop.store();
    commands.handle(Command::selectAll, [&] { selectAll(store); });
    commands.handle(Command::selectNone, [&] { store.select({}); });
    commands.handle(Command::remove,
        [&] { desktop.say(removeOrReject(store, desktop.browser().targets()), Offer::undo); });
    commands.handle(Command::removeFromLibrary, [&] { removeFromLibrary(window); });
    for (const auto& [command, places] : {std::pair{Command::moveEarlier, -1}, {Command::moveLater, 1}})
        commands.handle(
            command, [&, places = places] { stepInAlbum(store, desktop.browser().targets(), places); },
            [&] { return isArrangedByHand(store); });
    commands.handle(Command::showInFolder, [&] { showInFolder(desktop); });
}

} // namespace korvo
