#include "catalog/store/LibraryStore.h"

#include <algorithm>
#include <unordered_set>

namespace korvo {

namespace {

/// The ids without repetitions: several members of a collapsed stack are all shown as its pick.
std::vector<PhotoID> onceEach(std::vector<PhotoID> ids)
{
    std::unordered_set<PhotoID> seen;
    std::erase_if(ids, [&](PhotoID id) { return !seen.insert(id).second; });
    return ids;
}

} // namespace

void LibraryStore::select(std::vector<PhotoID> ids)
{
    main_.assertCurrent();
    toSelect_.clear();
    if (!isListed_)
        toSelect_ = std::move(ids);
    else if (ids != selection_) {
        selection_ = std::move(ids);
        changed.emit({.photos = {}, .selection = true});
    }
}

std::optional<std::size_t> LibraryStore::firstSelectedPosition() const
{
    return selection_.empty() ? std::nullopt : list_.shownPosition(selection_.front());
}

bool LibraryStore::repairSelection(std::optional<std::size_t> firstPosition)
{
    const auto before = selection_;
    if (!reading_ && !toSelect_.empty())
        selection_ = ordering_ ? toSelect_ : std::exchange(toSelect_, {}); // it may show what is hidden yet
    std::vector<PhotoID> kept;
    for (const PhotoID id : selection_)
        if (const auto shownID = list_.shownFor(id))
            kept.push_back(*shownID);
    selection_ = onceEach(std::move(kept));
    const auto& shown = list_.shown();
    if (selection_.empty() && firstPosition && !shown.empty())
        selection_ = {list_.items()[shown[std::min(*firstPosition, shown.size() - 1)]].id};
    return selection_ != before;
}

} // namespace korvo
