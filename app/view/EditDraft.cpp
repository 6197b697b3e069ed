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
    if (change_ && (state_ != State::open || title != title_))
        store(); // which throws as long as it is being stored
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
    auto change = std::exchange(change_, {});
    const auto before = std::exchange(state_, State::open);
    try {
        changeEdits(store_, title_, photos_, change);
    } catch (const DatabaseError& error) {
        if (error.mayPass()) {
            change_ = std::move(change);
            state_ = before == State::storing ? before : State::over;
        } else
            changed.emit();
        throw;
    } catch (...) {
        changed.emit();
        throw;
    }
    if (store_.longStep()) {
        change_ = std::move(change);
        state_ = State::storing;
    }
}

void EditDraft::stepEnded(StepOutcome outcome)
{
    if (state_ != State::storing)
        return;
    state_ = outcome == StepOutcome::failedForNow ? State::over : State::open;
    if (state_ == State::open)
        change_ = {};
    changed.emit();
}

void EditDraft::drop()
{
    if (!isOpen()) // what is being stored is taken back by undo, after it
        return;
    state_ = State::open;
    change_ = {};
    changed.emit();
}

void EditDraft::apply(std::string title, Change change)
{
    show(std::move(title), std::move(change));
    keep();
}

} // namespace korvo
