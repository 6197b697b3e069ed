#include "app/desktop/Desktop.h"

#include "base/Text.h"
#include "base/UserError.h"
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
          if (store().longStep()) // nothing else comes into the history meanwhile
              newestBeforeStep_ = store().newestStep();
          if (change.takenOut > 0)
              sayTakenOut(change.takenOut);
      })),
      stepEnded_(store().stepEnded.connect([this](StepOutcome outcome) { stepEnded(outcome); })),
      failed_(store().failed.connect([this](const std::exception& error) { fail(error); }))
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
    stepBefore_ = store().longStep();
}

void Desktop::endAttempt()
{
    if (--attempts_ == 0 && !hasSpoken_)
        offerUndo(newestBefore_);
}

void Desktop::offerUndo(std::uint64_t since)
{
    const auto photos = store().undoPhotos();
    if (store().undoStep() > since && photos > photosBeforeUndoIsOffered)
        sayDone(*store().undoTitle() + ": " + counted(photos, "photo") + ".", since);
}

void Desktop::notify(const Notice& notice)
{
    hasSpoken_ = true;
    noticed.emit(notice);
}

void Desktop::say(std::string text, Offer offer)
{
    if (offer == Offer::nothing)
        notify({Notice::Kind::note, std::move(text)});
    else if (store().longStep() != stepBefore_)
        saidOfStep_ = std::move(text);
    else
        sayDone(std::move(text), newestBefore_);
}

void Desktop::sayDone(std::string text, std::uint64_t since)
{
    const auto step = store().undoStep();
    notify({Notice::Kind::note, std::move(text), step > since ? step : std::nullopt});
}

void Desktop::sayTakenOut(std::size_t photos)
{
    notify({Notice::Kind::note,
        "Took " + counted(photos, "photo") + " out of the library. "
            + (photos == 1 ? "Its file stays." : "Their files stay."),
        std::nullopt, store().redoStep()});
}

void Desktop::stepEnded(StepOutcome outcome)
{
    stepBefore_ = nullptr; // an attempt that asks the user goes on meanwhile
    const auto text = std::exchange(saidOfStep_, {});
    if (outcome != StepOutcome::done)
        return;
    if (text)
        sayDone(*text, newestBeforeStep_);
    else
        offerUndo(newestBeforeStep_);
}

void Desktop::fail(const std::exception& error)
{
    const auto* const fault = dynamic_cast<const DatabaseError*>(&error);
    const bool passes = fault && fault->which() == DatabaseError::Case::occupied;
    notify({passes ? Notice::Kind::note : Notice::Kind::error, asSentence(textForUser(error))});
}

} // namespace korvo
