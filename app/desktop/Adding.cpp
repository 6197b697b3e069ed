#include "app/desktop/Adding.h"

#include "app/AddFiles.h"
#include "app/desktop/Desktop.h"
#include "base/Text.h"

namespace korvo {

namespace {

using Steady = std::chrono::steady_clock;

/// Shows what was added so far, the more seldom the longer it takes, so that large libraries are not read all
/// the time.
struct Showing {
    Steady::time_point next = Steady::now();

    void show(Desktop& desktop)
    {
        const auto begun = Steady::now();
        if (begun < next || desktop.store().isReading())
            return;
        desktop.attempt([&] { desktop.session().photosAdded(); });
        const auto photos = desktop.store().list().items().size();
        next = begun
            + std::max<Steady::duration>(std::chrono::seconds(1), photos * std::chrono::microseconds(50));
    }
};

std::string summaryOf(const AddResult& result)
{
    auto text = "Added " + counted(result.added, "photo");
    if (result.known > 0)
        text += ", " + std::to_string(result.known) + " in the library already";
    return text + (result.cancelled ? ", then stopped." : ".");
}

} // namespace

void addToLibrary(Desktop& desktop, std::vector<std::filesystem::path> paths)
{
    if (paths.empty())
        return;
    auto showing = std::make_shared<Showing>();
    auto added = std::make_shared<AddedRows>();
    auto work = [&desktop, &catalog = desktop.store().catalog(), &clock = desktop.clock(),
                    paths = std::move(paths), showing, added](JobContext& job) {
        auto result
            = addFiles(catalog, paths, clock, ReadCameraData::later, job.stop(), [&](std::size_t done) {
                  job.progress(done, 0);
                  job.deliver([&desktop, showing] { showing->show(desktop); });
              });
        *added = result;
        for (const auto& failure : result.failures)
            job.fail(failure.message);
        if (!result.broken.empty())
            job.fail("The adding ended early; add again to go on. " + result.broken);
        return summaryOf(result);
    };
    const auto since = desktop.store().newestStep();
    desktop.jobs().start(
        "Adding", Stopping::keeps, std::move(work), [&desktop, added, since](const Job& job) {
            desktop.attempt([&] {
                desktop.session().photosAdded("Add", std::move(*added), since);
                desktop.say(job.summary(), Offer::undo);
            });
        });
}

} // namespace korvo
