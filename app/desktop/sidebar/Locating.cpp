#include "app/desktop/sidebar/Locating.h"

#include "app/desktop/Desktop.h"
#include "catalog/MovedFolder.h"
#include "catalog/store/BackgroundReading.h"

#include <exception>

namespace korvo {

namespace {

using Move = std::function<void(Database&)>;

/// Moves paths on a connection of the job's own, so that what the window asks of the library does not wait.
void begin(
    Desktop& desktop, Move move, std::function<void()> moved = [] {})
{
    const auto error = std::make_shared<std::exception_ptr>();
    auto work = [&catalog = desktop.store().catalog(), move = std::move(move), error](JobContext& job) {
        try {
            auto database = catalog.changingConnection();
            endWith(database, job.stop());
            move(database);
        } catch (const std::exception&) { // shown until it is closed, as of any other command
            *error = std::current_exception();
        }
        return std::string();
    };
    desktop.jobs().start("Locating Folder", Stopping::drops, std::move(work),
        [&desktop, error, moved = std::move(moved)](const Job& job) {
            desktop.attempt([&] {
                if (*error && !job.isCancelled())
                    std::rethrow_exception(*error);
                if (*error)
                    return;
                moved();
                desktop.store().reloadIfChangedElsewhere();
            });
        });
}

} // namespace

void locateInBackground(Desktop& desktop, std::int64_t folder, const std::filesystem::path& place)
{
    const auto way = std::make_shared<FolderMove>();
    const auto retrace = [&desktop, folder, way](UndoWay wanted) {
        begin(desktop, [folder, to = wanted == UndoWay::back ? way->from : way->to](Database& database) {
            folderMoved(database, folder, to);
        });
    };
    begin(
        desktop, [folder, place, way](Database& database) { *way = locateFolder(database, folder, place); },
        [&desktop, way, retrace, since = desktop.store().newestStep()] {
            if (way->from == way->to)
                return desktop.say("The library has the folder at " + way->to + " already.");
            desktop.store().adopt("Locate Folder", retrace, since);
            desktop.say("The folder and its photos are at " + way->to + " now.", Offer::undo);
        });
}

} // namespace korvo
