#include "base/Text.h"
#include "catalog/store/LibraryStore.h"

namespace korvo {

namespace {

void requireNoRetrace(const UndoHistory& history)
{
    if (const UndoStep* const step = history.retracing())
        throw DatabaseError::occupied(step->title);
}

} // namespace

void LibraryStore::make(std::string title, Where where, MakeStep making, EndStep ending)
{
    if (where == Where::here)
        return ending([&] { return making(*catalog_, writePatience); });
    longStep_ = std::make_unique<LongStep>(std::move(title),
        Background<StepDone>(
            main_,
            [&catalog = *catalog_, making = std::move(making)](
                const std::stop_token&) { return madeBeside(catalog, making); },
            [this] { longStepArrived(); }),
        std::move(ending));
    if (!longStep_->work.waitFor(patience_))
        return changed.emit({});
    const auto step = std::exchange(longStep_, nullptr);
    step->ending([&] { return taken(*step); });
}

StepDone LibraryStore::taken(LongStep& step)
try {
    auto done = step.work.take();
    step.outcome = StepOutcome::done;
    if (done.seen && done.seen->before == dataVersion_)
        dataVersion_ = done.seen->after;
    return done;
} catch (const DatabaseError& error) {
    step.outcome = error.mayPass() ? StepOutcome::failedForNow : StepOutcome::failed;
    throw;
}

/// Each part of it by itself: what fails keeps the others from nothing.
void LibraryStore::longStepArrived()
{
    main_.assertCurrent();
    endedStep_ = std::exchange(longStep_, nullptr);
    tellFault([&] { endedStep_->ending([&] { return taken(*endedStep_); }); });
    tellFault([&] { changed.emit({}); });
    tellFault([&] { stepEnded.emit(endedStep_->outcome); });
    endedStep_ = nullptr;
    while (isFree() && !whenFree_.empty()) { // one of them may begin a long step again
        const auto action = std::move(whenFree_.front());
        whenFree_.pop_front();
        tellFault(action);
    }
}

void LibraryStore::tellFault(const std::function<void()>& action)
{
    try {
        action();
    } catch (const std::exception& error) {
        failed.emit(error);
    }
}

void LibraryStore::whenFree(std::function<void()> action)
{
    main_.assertCurrent();
    if (isFree())
        action();
    else
        whenFree_.push_back(std::move(action));
}

void LibraryStore::finishLongStep()
{
    main_.assertCurrent();
    while (longStep_)
        if (longStep_->work.waitFor(untilItIsRead))
            longStepArrived();
}

void LibraryStore::requireFree() const
{
    main_.assertCurrent();
    if (const auto& step = longStep_ ? longStep_ : endedStep_)
        throw DatabaseError::occupied(step->title);
}

void LibraryStore::perform(std::string title, std::function<void(Catalog&)> change, std::size_t photos)
{
    requireFree();
    make(
        title, photos > bounds_.photosAtOnce ? Where::beside : Where::here,
        [change = std::move(change)](
            Catalog& catalog, auto patience) { return madeChange(catalog, patience, change); },
        [this, title](const TakeStep& take) {
            auto [changes, rows, toSelect, seen] = take();
            if (changes.empty())
                return;
            history_.add({.title = title,
                .changes = std::move(changes),
                .photos = rows.updated.size() + rows.inserted.size() + rows.deleted.size(),
                .added = {}});
            publish(std::move(rows));
        });
}

void LibraryStore::adopt(std::string_view verb, AddedRows added, std::uint64_t since)
{
    // A long step is the newest, or the one that is taken next, to its end.
    whenFree([this, verb = std::string(verb), added = std::move(added), since] {
        if (added.areThere())
            history_.addBehind(since,
                {.title = verb + " " + counted(added.photos.size(), "Photo"), .changes = {}, .added = added});
        reload();
    });
}

void LibraryStore::adopt(std::string title, Retrace retrace, std::uint64_t since)
{
    whenFree([this, title = std::move(title), retrace = std::move(retrace), since] {
        history_.addBehind(since, {.title = title, .changes = {}, .added = {}, .retrace = retrace});
        changed.emit({});
    });
}

std::optional<std::uint64_t> LibraryStore::undoStep() const
{
    const UndoStep* const step = history_.toUndo();
    return step ? std::optional(step->number) : std::nullopt;
}

std::optional<std::uint64_t> LibraryStore::redoStep() const
{
    const UndoStep* const step = history_.toRedo();
    return step ? std::optional(step->number) : std::nullopt;
}

std::optional<std::string> LibraryStore::undoTitle() const
{
    const UndoStep* const step = history_.toUndo();
    return step ? std::optional(step->title) : std::nullopt;
}

std::size_t LibraryStore::undoPhotos() const
{
    const UndoStep* const step = history_.toUndo();
    return step ? step->photos : 0;
}

std::optional<std::string> LibraryStore::redoTitle() const
{
    const UndoStep* const step = history_.toRedo();
    return step ? std::optional(step->title) : std::nullopt;
}

StepDone LibraryStore::attempt(UndoWay way, const TakeStep& take)
{
    try {
        return take();
    } catch (const DatabaseError& error) {
        if (error.mayPass())
            throw;
        const auto title = (way == UndoWay::back ? history_.toUndo() : history_.toRedo())->title;
        way == UndoWay::back ? history_.forgetUndo()
                             : history_.forgetRedo(); // those behind it can still be taken
        if (error.primaryCode() == SQLITE_CONSTRAINT)
            throw DatabaseError::outdated(title, way == UndoWay::back ? "undone" : "done again", error);
        throw;
    }
}

void LibraryStore::undo()
{
    requireFree();
    requireNoRetrace(history_);
    const UndoStep* const step = history_.toUndo();
    if (step && step->added.areThere())
        takeOut(*step);
    else if (step)
        takeStep(*step, UndoWay::back);
}

void LibraryStore::redo()
{
    requireFree();
    requireNoRetrace(history_);
    if (const UndoStep* const step = history_.toRedo())
        takeStep(*step, UndoWay::forth);
}

/// The step stays in its place till it is taken: nothing comes into the history meanwhile.
void LibraryStore::takeOut(const UndoStep& step)
{
    make(
        "Undo " + step.title, step.added.photos.size() > bounds_.photosAtOnce ? Where::beside : Where::here,
        [&added = step.added](Catalog& catalog, auto patience) { return takenOut(catalog, patience, added); },
        [this](const TakeStep& take) {
            auto done = attempt(UndoWay::back, take);
            history_.undone(std::move(done.changes));
            const auto photos = done.rows.deleted.size();
            publish(std::move(done.rows), {}, photos);
        });
}

void LibraryStore::takeStep(const UndoStep& step, UndoWay way)
{
    if (step.retrace) {
        step.retrace(way, [this](UndoWay gone) {
            history_.endRetrace(gone);
            changed.emit({});
        });
        history_.beginRetrace(way);
        return changed.emit({});
    }
    make((way == UndoWay::back ? "Undo " : "Redo ") + step.title,
        step.changes.bytes().size() > bounds_.bytesAtOnce ? Where::beside : Where::here,
        [&changes = step.changes, way](
            Catalog& catalog, auto patience) { return retraced(catalog, patience, changes, way); },
        [this, way, source = source_, selected = wishedSelection()](const TakeStep& take) {
            auto done = attempt(way, take);
            way == UndoWay::back ? history_.undone() : history_.redone();
            const bool hasMovedOn = source != source_ || selected != wishedSelection();
            publish(std::move(done.rows), hasMovedOn ? std::span<const PhotoID>() : done.toSelect);
        });
}

} // namespace korvo
