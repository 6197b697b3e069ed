#include "app/desktop/adjust/AdjustPanel.h"
#include "app/desktop/sheets/ExportSheet.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"
#include "app/pictures/AutoAdjust.h"
#include "base/Text.h"
#include "catalog/store/LibraryActions.h"
#include "edits/AdjustmentCopy.h"
#include "edits/Geometry.h"

#include <memory>

namespace korvo {

namespace {

/// The commands on adjustments.
class Adjusting : public QObject {
public:
    explicit Adjusting(MainWindow& window) : QObject(&window), window_(window), desktop_(window.desktop())
    {
        auto& commands = window.commands();
        commands.handle(Command::copyAdjustments, [this] { copy(); });
        commands.handle(
            Command::pasteAdjustments, [this] { paste(); }, [this] { return copied_.has_value(); });
        commands.handle(Command::rotateLeft, [this] { rotate("Rotate Left", -1); });
        commands.handle(Command::rotateRight, [this] { rotate("Rotate Right", 1); });
        commands.handle(Command::autoAdjust, [this] { enhance(); });
        commands.handle(Command::resetAdjustments, [this] {
            change("Reset Adjustments", [](PhotoEdits& edits) { edits = withoutAdjustments(edits); });
        });
        commands.handle(
            Command::exportPhotos, [this] { showExportSheet(window_, desktop_.browser().targets()); });
    }

private:
    void copy()
    {
        const auto* const item = desktop_.browser().currentItem();
        if (!item)
            return;
        copied_ = desktop_.store().catalog().photo(item->id).value_or(*item).edits(); // as it is stored
        window_.commands().refresh();
        desktop_.say("Copied the adjustments of " + item->filename.string() + ".");
    }

    void paste()
    {
        change("Paste Adjustments",
            [copied = *copied_](PhotoEdits& edits) { edits = withAdjustmentsOf(copied, edits); });
    }

    void rotate(const char* title, int quarters)
    {
        change(title, [quarters](PhotoEdits& edits) { turn(edits, quarters); });
    }

    void change(const char* title, const EditDraft::Change& how)
    {
        changeEdits(desktop_.store(), title, desktop_.browser().targets(), how);
    }

    void enhance()
    {
        desktop_.store().whenFree([this, ids = desktop_.browser().targets()] { propose(ids); });
    }

    void propose(const std::vector<PhotoID>& ids)
    {
        auto proposals = std::make_shared<std::vector<AutoProposal>>();
        const auto work = [proposals, ids, &catalog = desktop_.store().catalog(),
                              &reader = desktop_.imageReader()](JobContext& job) {
            const auto photos
                = catalog.beside().photosByID(ids); // as they are stored: the list may be behind
            *proposals = autoProposals(
                reader, photos, job.stop(), [&](std::size_t done) { job.progress(done, photos.size()); },
                [&](std::string sentence) { job.fail(std::move(sentence)); });
            return "Enhanced " + counted(proposals->size(), "photo") + ".";
        };
        desktop_.jobs().start("Auto Enhance", Stopping::drops, work, [this, proposals](const Job& job) {
            if (job.isCancelled())
                return desktop_.say("Auto was stopped. Nothing was changed.");
            desktop_.store().whenFree([&desktop = desktop_, proposals, summary = job.summary()] {
                desktop.attempt([&] {
                    applyAuto(desktop.store(), *proposals);
                    desktop.say(summary, proposals->empty() ? Offer::nothing : Offer::undo);
                });
            });
        });
    }

    MainWindow& window_;
    Desktop& desktop_;
    std::optional<PhotoEdits> copied_;
};

} // namespace

void addAdjust(MainWindow& window)
{
    window.addInspectorTab("Adjust", new AdjustPanel(window));
    new Adjusting(window); // a child of the window
}

} // namespace korvo
