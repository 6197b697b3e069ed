#include "app/view/EditDraft.h"
#include "catalog/store/LibraryActions.h"

#include <algorithm>
#include <utility>

namespace korvo {

EditDraft::EditDraft(LibraryStore& store, Browser& browser)
    : store_(store), browser_(browser),
      stepEnded_(store.stepEnded.connect([this](StepOutcome outcome) { stepEnded(outcome); }))
{ }

PhotoEdits EditDraft::editsOf(const PhotoItem& item) const
{
    auto edits = item.readableEdits().value_or(PhotoEdits());
    if (change_ && std::ranges::find(photos_, item.id) != photos_.end())
        change_(edits);
    return edits;
}

void EditDraft::show(std::string title, Change change)
{
    requireFree();
    if (change_ && (state_ != State::open || title != title_)) {
        store();
        requireFree(); // of the step that this has begun
    }
    if (!change_)
        photos_ = browser_.targets();
    title_ = std::move(title);
    change_ = std::move(change);
    changed.emit();
}

void EditDraft::keep()
{
    if (isOpen())
        store();
}

void EditDraft::store()
{
    state_ = State::storing; // shown all the while
    try {
        changeEdits(store_, title_, photos_, change_);
    } catch (const DatabaseError& error) {
        if (!error.mayPass()) {
            end();
            throw;
        }
        state_ = State::over;
        changed.emit(); // the control has been let go
        throw;
    } catch (...) {
        end();
        throw;
    }
    if (!store_.longStep()) {
        change_ = {};
        state_ = State::open;
    }
}

void EditDraft::end()
{
    change_ = {};
    state_ = State::open;
    changed.emit();
}

void EditDraft::requireFree()
{
    if (store_.isFree())
        return;
    changed.emit(); // the control goes back
    store_.requireFree();
}

void EditDraft::stepEnded(StepOutcome outcome)
{
    if (state_ != State::storing)
        return;
    if (outcome != StepOutcome::failedForNow)
        return end();
    state_ = State::over;
    changed.emit();
}

void EditDraft::drop()
{
    if (isOpen()) // what is being stored is taken back by undo, after it
        end();
}

void EditDraft::apply(std::string title, Change change)
{
    show(std::move(title), std::move(change));
    keep();
}

} // namespace korvo
