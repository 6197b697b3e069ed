#include "app/desktop/sidebar/Locating.h"

#include "app/desktop/Desktop.h"
#include "catalog/MovedFolder.h"
#include "catalog/store/BackgroundReading.h"

#include <exception>

namespace korvo {

namespace {

void follow(Desktop& desktop, std::int64_t folder, const FolderMove& move)
{
    if (move.from == move.to)
        return desktop.say("The library has the folder at " + move.to + " already.");
    desktop.store().perform(
        "Locate Folder",
        [folder, to = move.to](Catalog& catalog) { folderMoved(catalog.database(), folder, to); },
        move.photos);
    desktop.say("The folder and its photos are at " + move.to + " now.", Offer::undo);
}

} // namespace

void locateInBackground(Desktop& desktop, std::int64_t folder, const std::filesystem::path& place)
{
    const auto found = std::make_shared<FolderMove>();
    const auto error = std::make_shared<std::exception_ptr>();
    auto work = [&catalog = desktop.store().catalog(), folder, place, found, error](JobContext& job) {
        try { // the disk may be slow
            auto database = catalog.lookingConnection();
            endWith(database, job.stop());
            *found = findFolder(database, folder, place);
        } catch (const std::exception&) { // shown until it is closed, as of any other command
            *error = std::current_exception();
        }
        return std::string();
    };
    desktop.jobs().start("Locating Folder", Stopping::drops, std::move(work),
        [&desktop, folder, found, error](const Job& job) {
            if (!job.isCancelled())
                desktop.store().whenFree([&desktop, folder, found, error] {
                    desktop.attempt([&] {
                        if (*error)
                            std::rethrow_exception(*error);
                        follow(desktop, folder, *found);
                    });
                });
        });
}

} // namespace korvo
