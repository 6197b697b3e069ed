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
      faceModel_(main, downloader_, applicationDataFolder()), jobs_(main),
      storeChanged_(store().changed.connect([this](const LibraryChange& change) {
          if (change.takenOut > 0)
              sayTakenOut(change.takenOut);
      })),
      stepEnded_(store().stepEnded.connect([this](const auto& fault) { stepEnded(fault); }))
{ }

VolumeWatcher& Desktop::volumes()
{
    if (!volumes_)
        volumes_ = std::make_unique<VolumeWatcher>(main_, volumeService_);
    return *volumes_;
}

bool Desktop::isBusy()
{
    return store().isReading() || store().isOrdering() || store().isCounting() || store().longStep()
        || pictures_.waiting() > 0 || decoded_.isBusy() || renders_.isBusy() || !jobs_.running().empty();
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
    if (--attempts_ == 0)
        offerUndo();
}

void Desktop::offerUndo()
{
    const auto photos = store().undoPhotos();
    if (!hasSpoken_ && store().undoStep() > newestBefore_ && photos > photosBeforeUndoIsOffered)
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

void Desktop::sayTakenOut(std::size_t photos)
{
    notify({Notice::Kind::note,
        "Took " + counted(photos, "photo") + " out of the library. "
            + (photos == 1 ? "Its file stays." : "Their files stay."),
        std::nullopt, store().redoStep()});
}

void Desktop::stepEnded(const std::exception_ptr& fault)
{
    if (fault)
        return attempt([&] { std::rethrow_exception(fault); });
    hasSpoken_ = false;
    offerUndo();
}

void Desktop::fail(const std::exception& error)
{
    notify({Notice::Kind::error, asSentence(textForUser(error))});
}

} // namespace korvo
