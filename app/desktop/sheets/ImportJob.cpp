#include "app/desktop/sheets/ImportJob.h"

#include "imports/ImportRun.h"
#include "platform/linux/LinuxVolumes.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace korvo {

namespace {

/// Lets the volume go, and says so. What is not written yet may keep the system at it for minutes: when the
/// job is stopped meanwhile, the system goes on by itself.
std::string ejectedText(const ImportResult& result, const Source& source, const std::stop_token& stop)
{
    struct Ejecting {
        std::mutex mutex;
        std::condition_variable_any ended;
        std::optional<std::string> text;
    };
    const auto ejecting = std::make_shared<Ejecting>();
    std::thread([ejecting, result, source] {
        LinuxVolumes volumes;
        const auto ejected = ejectAfter(result, source, volumes);
        const std::lock_guard lock(ejecting->mutex);
        ejecting->text = ejected ? ". " + ejected->text : std::string();
        ejecting->ended.notify_all();
    }).detach();
    std::unique_lock lock(ejecting->mutex);
    ejecting->ended.wait(lock, stop, [&] { return ejecting->text.has_value(); });
    return ejecting->text.value_or(". " + nameOf(source) + " is still being ejected.");
}

} // namespace

std::shared_ptr<Job> startImport(Desktop& desktop, std::shared_ptr<FileSource> files, const Source& source,
    ImportListing listing, ImportPlan plan, ImportWatcher watcher)
{
    const auto added = std::make_shared<AddedRows>();
    const auto work = [&desktop, files = std::move(files), source, listing = std::move(listing), added,
                          plan = std::make_shared<ImportPlan>(std::move(plan)),
                          progress = std::move(watcher.progress)](JobContext& job) {
        const auto total = plan->files.size();
        auto result = runImport(
            desktop.store().catalog(), *files, *plan, desktop.clock(), job.stop(), [&](std::size_t index) {
                job.progress(index - 1, total);
                job.deliver([progress, index, text = progressText(index, total, nameOf(source))] {
                    progress(index, text);
                });
            });
        *added = result; // before anything can fail: undo goes by it
        for (auto& text : failuresOf(listing, result))
            job.fail(std::move(text));
        auto said = countsText(countsOf(listing, result));
        if (plan->eject && !result.cancelled)
            said += ejectedText(result, source, job.stop());
        return said;
    };
    const auto since = desktop.store().newestStep();
    return desktop.jobs().start("Importing from " + nameOf(source), Stopping::keeps, work,
        [added, since, &desktop, ended = std::move(watcher.ended)](const Job& job) {
            desktop.attempt([&] {
                desktop.session().photosAdded("Import", std::move(*added), since);
                desktop.say(job.summary(), Offer::undo);
            });
            ended(job);
        });
}

} // namespace korvo
