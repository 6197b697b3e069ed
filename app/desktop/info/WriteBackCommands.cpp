#include "app/desktop/info/WriteBackCommands.h"

#include "app/desktop/Ask.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "metadata/FileWorkTexts.h"

namespace korvo {

namespace {

void revert(MainWindow& window)
{
    auto& writeBack = window.desktop().session().writeBack();
    const auto photos = window.desktop().store().catalog().mastersOf(window.desktop().browser().targets());
    writeBack.requireRevertible(photos);
    if (ask(window, qt(revertTitle), qt(revertQuestion(photos.size())), "Revert"))
        writeBack.revertMetadataToAsFound(photos);
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
    window.commands().handle(Command::revertMetadata, [&window] { revert(window); });
}

} // namespace korvo
