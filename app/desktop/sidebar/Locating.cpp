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
    Desktop& desktop, Move move, std::function<void()> moved, std::function<void()> stayed = [] {})
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
        [&desktop, error, moved = std::move(moved), stayed = std::move(stayed)](const Job& job) {
            desktop.attempt([&] {
                if (*error)
                    stayed();
                if (*error && !job.isCancelled())
                    std::rethrow_exception(*error);
                if (*error)
                    return;
                moved();
                desktop.store().reloadIfChangedElsewhere();
            });
        });
}

/// Makes the move a step of undo, behind what was done since that one; and again where taking it back did not
/// succeed, until two tries in a row did not and it would only stand before older steps.
void keepStep(
    Desktop& desktop, std::int64_t folder, const FolderMove& move, std::uint64_t since, int inVain = 0)
{
    const auto retrace = [&desktop, folder, move, inVain](UndoWay way) {
        const bool isBack = way == UndoWay::back;
        begin(
            desktop,
            [folder, to = isBack ? move.from : move.to](
                Database& database) { folderMoved(database, folder, to); },
            [] {},
            [&desktop, folder, move, inVain, isBack, since = desktop.store().newestStep()] {
                if (isBack && inVain == 0)
                    keepStep(desktop, folder, move, since, inVain + 1);
            });
    };
    desktop.store().adopt("Locate Folder", retrace, since);
}

} // namespace

void locateInBackground(Desktop& desktop, std::int64_t folder, const std::filesystem::path& place)
{
    const auto way = std::make_shared<FolderMove>();
    begin(
        desktop, [folder, place, way](Database& database) { *way = locateFolder(database, folder, place); },
        [&desktop, folder, way, since = desktop.store().newestStep()] {
            if (way->from == way->to)
                return desktop.say("The library has the folder at " + way->to + " already.");
            keepStep(desktop, folder, *way, since);
            desktop.say("The folder and its photos are at " + way->to + " now.", Offer::undo);
        });
}

} // namespace korvo
