#include "app/view/EditDraft.h"
#include "catalog/store/LibraryActions.h"

#include <algorithm>
#include <utility>

namespace korvo {

PhotoEdits EditDraft::editsOf(const PhotoItem& item) const
{
    auto edits = item.readableEdits().value_or(PhotoEdits());
    if (change_ && std::ranges::find(photos_, item.id) != photos_.end())
        change_(edits);
    return edits;
}

void EditDraft::show(std::string title, Change change)
{
    if (change_ && (isOver_ || title != title_))
        keep();
    if (!change_)
        photos_ = browser_.targets();
    title_ = std::move(title);
    change_ = std::move(change);
    changed.emit();
}

void EditDraft::keep()
{
    auto change = std::exchange(change_, {});
    isOver_ = false;
    if (!change)
        return;
    try {
        changeEdits(store_, title_, photos_, change);
    } catch (const DatabaseError& error) {
        if ((isOver_ = error.mayPass()))
            change_ = std::move(change);
        else
            changed.emit();
        throw;
    } catch (...) {
        changed.emit();
        throw;
    }
}

void EditDraft::drop()
{
    isOver_ = false;
    if (std::exchange(change_, {}))
        changed.emit();
}

void EditDraft::apply(std::string title, Change change)
{
    show(std::move(title), std::move(change));
    keep();
}

} // namespace korvo
