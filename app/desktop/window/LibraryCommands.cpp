// Libraries, folders, albums, stacks, versions, and taking photos out.

#include "app/desktop/Adding.h"
#include "app/desktop/Ask.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/NewLines.h"
#include "app/desktop/window/NewWindow.h"
#include "app/desktop/window/Parts.h"
#include "app/view/AlbumOrder.h"
#include "app/view/Marking.h"
#include "app/view/ShowVersions.h"
#include "app/view/Stacking.h"
#include "base/Text.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"
#include "platform/AppFolders.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QUrl>

#include <set>

namespace korvo {

namespace {

QString startFolder()
{
    return QFile::decodeName(picturesFolder().c_str());
}

void openLibrary(MainWindow& window)
{
    const QString folder = QFileDialog::getExistingDirectory(&window, "Open Library", startFolder());
    if (folder.isEmpty())
        return;
    std::error_code unreadable;
    if (!std::filesystem::exists(pathOf(folder) / "catalog.sqlite", unreadable))
        throw std::runtime_error("There is no library in " + utf8(folder)
            + (unreadable ? ", or it may not be looked into (" + unreadable.message() + ")" : "")
            + ". Choose the folder that holds its catalog.sqlite.");
    openInNewWindow(pathOf(folder));
}

void newLibrary(MainWindow& window)
{
    const QString folder = QFileDialog::getSaveFileName(&window, "New Library",
        startFolder() + "/New Library", {}, nullptr, QFileDialog::DontConfirmOverwrite);
    if (!folder.isEmpty())
        openInNewWindow(pathOf(folder));
}

void addFolder(MainWindow& window)
{
    const QString folder = QFileDialog::getExistingDirectory(&window, "Add Folder", startFolder());
    if (!folder.isEmpty())
        addToLibrary(window.desktop(), {pathOf(folder)});
}

/// The project that is shown, below which new ones belong.
std::optional<std::int64_t> shownProject(const LibraryStore& store)
{
    const auto& source = store.source();
    return source && source->kind == LibrarySource::Kind::project ? std::optional(source->id) : std::nullopt;
}

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

void addStackCommands(MainWindow& window)
{
    auto& commands = window.commands();
    auto& desktop = window.desktop();
    auto& store = desktop.store();
    auto& browser = desktop.browser();
    commands.handle(Command::stack, [&] { stackPhotos(store, browser.targets(), browser.current()); });
    commands.handle(Command::unstack, [&] { unstackPhotos(store, browser.targets()); });
    commands.handle(Command::toggleStack, [&] { toggleStacks(store, browser.targets()); });
    const auto isStacked = [&] { return browser.currentItem() && browser.currentItem()->stackID; };
    commands.handle(
        Command::setPick, [&] { makePick(store, *browser.current()); }, isStacked);
    for (const auto& [command, places] : {std::pair{Command::earlierInStack, -1}, {Command::laterInStack, 1}})
        commands.handle(
            command,
            [&, places = places] {
                if (const auto said = stepInStack(store, *browser.current(), places); !said.empty())
                    desktop.say(said);
            },
            isStacked);
    commands.handle(Command::newVersion,
        [&] { desktop.say(makeVersions(store, browser, desktop.clock().now()), Offer::undo); });
    commands.handle(
        Command::showVersions, [&] { desktop.browser().showVersions(desktop.browser().targets().front()); });
}

} // namespace

void addLibraryCommands(MainWindow& window)
{
    auto& commands = window.commands();
    auto& desktop = window.desktop();
    auto& store = desktop.store();
    commands.handle(Command::newLibrary, [&] { newLibrary(window); });
    commands.handle(Command::openLibrary, [&] { openLibrary(window); });
    commands.handle(Command::addFolder, [&] { addFolder(window); });
    commands.handle(Command::newProject, [&] { newProject(window, shownProject(store)); });
    commands.handle(Command::newAlbum, [&] { newAlbum(window, shownProject(store)); });
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
    addStackCommands(window);
}

} // namespace korvo
