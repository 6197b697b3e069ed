#include "app/desktop/Desktop.h"

#include "base/Text.h"
#include "catalog/UserText.h"
#include "platform/AppFolders.h"

namespace korvo {

namespace {

constexpr std::size_t photosBeforeUndoIsOffered = 20;

} // namespace

Desktop::Desktop(QtMainThread& main, std::unique_ptr<Catalog> catalog, const Clock& clock, Defaults& defaults,
    std::chrono::milliseconds patience)
    : main_(main), clock_(clock), defaults_(defaults),
      session_(main, std::move(catalog), tools_.exifTool, defaults, patience),
      previewCache_(store().catalog().previewsFolder(),
          PreviewCache::usualBound(store().catalog().previewsFolder()), clock),
      browser_(store()), search_(store()), pictures_(main, tools_.reader, previewCache_),
      decoded_(main, tools_.reader), renders_(main), draft_(store(), browser_),
      faceModel_(main, downloader_, applicationDataFolder()), jobs_(main)
{ }

VolumeWatcher& Desktop::volumes()
{
    if (!volumes_)
        volumes_ = std::make_unique<VolumeWatcher>(main_, volumeService_);
    return *volumes_;
}

bool Desktop::isBusy()
{
    return store().isReading() || store().isOrdering() || store().isCounting() || pictures_.waiting() > 0
        || decoded_.isBusy() || renders_.isBusy() || !jobs_.running().empty();
}

void Desktop::beginAttempt()
{
    if (attempts_++ > 0)
        return;
    newestBefore_ = store().newestStep();
    hasSpoken_ = false;
}

void Desktop::endAttempt()
{
    const auto photos = store().undoPhotos();
    if (--attempts_ == 0 && !hasSpoken_ && store().undoStep() > newestBefore_
        && photos > photosBeforeUndoIsOffered)
        say(*store().undoTitle() + ": " + counted(photos, "photo") + ".", Offer::undo);
}

void Desktop::notify(const Notice& notice)
{
    hasSpoken_ = true;
    noticed.emit(notice);
}

void Desktop::say(std::string text, Offer offer)
{
    const auto step = store().undoStep();
    notify({Notice::Kind::note, std::move(text),
        offer == Offer::undo && step > newestBefore_ ? step : std::nullopt});
}

void Desktop::undo()
{
    if (const auto photos = browser_.undo(); photos > 0)
        notify({Notice::Kind::note,
            "Took " + counted(photos, "photo") + " out of the library. "
                + (photos == 1 ? "Its file stays." : "Their files stay."),
            std::nullopt, store().redoStep()});
}

void Desktop::fail(const std::exception& error)
{
    notify({Notice::Kind::error, asSentence(textForUser(error))});
}

} // namespace korvo
