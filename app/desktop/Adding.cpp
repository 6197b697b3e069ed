#include "app/desktop/Adding.h"

#include "app/AddFiles.h"
#include "app/desktop/Desktop.h"
#include "app/view/SidebarActions.h"
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
        text += ", " + grouped(result.known) + " in the library already";
    return text + (result.cancelled ? ", then stopped." : ".");
}

void ended(Desktop& desktop, const AddResult& done, std::uint64_t since,
    const std::optional<SidebarNode>& onto, std::string said)
{
    desktop.session().photosAdded("Add", done, since);
    if (onto && !done.met.empty())
        desktop.attempt([&] {
            said += " " + dropPhotos(desktop.store(), *onto, done.met);
            if (done.added > 0)
                said += std::string(" Undo leaves ") + (done.met.size() == 1 ? "it" : "them")
                    + " in the library.";
        });
    desktop.say(std::move(said), Offer::undo);
}

} // namespace

void addToLibrary(
    Desktop& desktop, std::vector<std::filesystem::path> paths, const std::optional<SidebarNode>& onto)
{
    if (paths.empty())
        return;
    auto showing = std::make_shared<Showing>();
    auto done = std::make_shared<AddResult>();
    auto work = [&desktop, &catalog = desktop.store().catalog(), &clock = desktop.clock(),
                    paths = std::move(paths), showing, done](JobContext& job) {
        *done = addFiles(catalog, paths, clock, ReadCameraData::now, job.stop(), [&](std::size_t files) {
            job.progress(files, 0);
            job.deliver([&desktop, showing] { showing->show(desktop); });
        });
        for (const auto& failure : done->failures)
            job.fail(sentenceOf(failure));
        if (!done->broken.empty())
            job.fail("The adding ended early; add again to go on. " + done->broken);
        return summaryOf(*done);
    };
    const auto since = desktop.store().newestStep();
    desktop.jobs().start(
        "Adding", Stopping::keeps, std::move(work), [&desktop, done, since, onto](const Job& job) {
            desktop.store().whenFree([&desktop, done, since, onto, summary = job.summary()] {
                desktop.attempt([&] { ended(desktop, *done, since, onto, summary); });
            });
        });
}

} // namespace korvo
