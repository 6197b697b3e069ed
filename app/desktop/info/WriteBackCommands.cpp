#include "app/desktop/info/WriteBackCommands.h"

#include "app/desktop/Ask.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "metadata/FileWorkTexts.h"
#include "metadata/MetadataSave.h"

#include <exception>

namespace korvo {

namespace {

void askAndRevert(MainWindow& window, const std::vector<PhotoID>& photos)
{
    if (ask(window, qt(revertTitle), qt(revertQuestion(photos.size())), "Revert"))
        window.desktop().session().writeBack().revertMetadataToAsFound(photos);
}

/// Finds out in the background which files are meant: of a long list that takes its time.
Task revert(MainWindow& window)
{
    auto& desktop = window.desktop();
    desktop.session().writeBack().requireIdle();
    return runInBackground(desktop.mainThread(),
        [&window, &catalog = desktop.store().catalog(), ids = desktop.browser().targets()](
            const Task::Context& context) {
            const auto end = [&](std::function<void()> action) {
                context.deliver([&window, action = std::move(action)] { window.desktop().attempt(action); });
            };
            try {
                const auto photos = catalog.mastersOf(ids);
                requireRevertible(catalog, photos);
                end([&window, photos] { askAndRevert(window, photos); });
            } catch (const std::exception&) { // why it is refused, or of the catalog
                end([error = std::current_exception()] { std::rethrow_exception(error); });
            }
        });
}

void save(Desktop& desktop)
{
    auto& writeBack = desktop.session().writeBack();
    writeBack.saveMetadataToFiles();
    if (!writeBack.isSaving())
        desktop.say("All metadata is in the files already.");
}

} // namespace

void addWriteBackCommands(MainWindow& window)
{
    auto& writeBack = window.desktop().session().writeBack();
    window.commands().handle(
        Command::saveMetadata, [&window] { save(window.desktop()); },
        [&writeBack] { return !writeBack.isSaving(); }); // also for a text that is still being typed
    window.commands().handle(Command::revertMetadata, [&window, asking = std::make_shared<Task>()] {
        window.desktop().leftTasks().take(std::move(*asking));
        *asking = revert(window);
    });
}

} // namespace korvo
