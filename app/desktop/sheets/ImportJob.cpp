#include "app/desktop/sheets/ImportJob.h"

#include "imports/ImportWindow.h"

namespace korvo {

std::shared_ptr<Job> startImport(
    Desktop& desktop, const ListedSource& from, ImportPlan plan, ImportWatcher watcher)
{
    const auto added = std::make_shared<AddedRows>();
    const auto work = [&desktop, from, added, plan = std::make_shared<ImportPlan>(std::move(plan)),
                          progress = std::move(watcher.progress)](JobContext& job) {
        const auto total = plan->files.size();
        auto imported = importPhotos(
            desktop.store().catalog(), from, *plan, desktop.clock(), job.stop(), [&](std::size_t index) {
                job.progress(index - 1, total);
                job.deliver([progress, index, text = progressText(index, total, nameOf(from.source))] {
                    progress(index, text);
                });
            });
        *added = std::move(imported.added);
        for (auto& text : imported.failures)
            job.fail(std::move(text));
        return countsText(imported.counts) + (imported.ejected ? ". " + imported.ejected->text : "");
    };
    const auto since = desktop.store().newestStep();
    return desktop.jobs().start("Importing from " + nameOf(from.source), Stopping::keeps, work,
        [added, since, &desktop, ended = std::move(watcher.ended)](const Job& job) {
            desktop.store().whenFree([&desktop, added, since, summary = job.summary()] {
                desktop.attempt([&] {
                    desktop.session().photosAdded("Import", *added, since);
                    desktop.say(summary, Offer::undo);
                });
            });
            ended(job);
        });
}

} // namespace korvo
