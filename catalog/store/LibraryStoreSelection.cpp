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

/// Where the photo behind the last of the selected will stand once these have left the list. Of very many the
/// beginning stands for all: this is asked with every change.
std::optional<std::size_t> LibraryStore::placeAfterSelection() const
{
    constexpr std::size_t most = 5'000; // a few milliseconds in a list of a million
    const auto ids = std::span(selection_).first(std::min(selection_.size(), most));
    const auto last = list_.lastShownPosition(ids);
    return last ? std::optional(*last - std::min(*last, ids.size() - 1)) : std::nullopt;
}

/// Selects what was to be once the list is there. Drops from the selection what is no longer shown, taking
/// the pick for what a collapsed stack hides; when nothing is left of it, the photo at that place is
/// selected, else the last one.
bool LibraryStore::repairSelection(std::optional<std::size_t> placeAfter)
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
    if (selection_.empty() && placeAfter && !shown.empty())
        selection_ = {list_.items()[shown[std::min(*placeAfter, shown.size() - 1)]].id};
    return selection_ != before;
}

} // namespace korvo
