// Libraries, and what is added to them: folders, projects, albums.

#include "app/desktop/Adding.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/NewLines.h"
#include "app/desktop/window/NewWindow.h"
#include "app/desktop/window/Parts.h"
#include "platform/AppFolders.h"

#include <QFileDialog>

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

} // namespace

void addLibraryCommands(MainWindow& window)
{
    auto& commands = window.commands();
    const auto& store = window.desktop().store();
    commands.handle(Command::newLibrary, [&] { newLibrary(window); });
    commands.handle(Command::openLibrary, [&] { openLibrary(window); });
    commands.handle(Command::addFolder, [&] { addFolder(window); });
    commands.handle(Command::newProject, [&] { newProject(window, shownProject(store)); });
    commands.handle(Command::newAlbum, [&] { newAlbum(window, shownProject(store)); });
}

} // namespace korvo
