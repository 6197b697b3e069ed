#include "catalog/PhotoList.h"

#include <algorithm>
#include <iterator>

namespace korvo {

namespace {

bool standsBeforeByName(const PhotoItem& a, const PhotoItem& b)
{
    return standsBefore(a, b, SortKey::name);
}

} // namespace

std::optional<std::uint32_t> PhotoList::position(PhotoID id) const
{
    const auto found = std::lower_bound(byID_.begin(), byID_.end(), id,
        [this](std::uint32_t position, PhotoID wanted) { return items_[position].id < wanted; });
    return found != byID_.end() && items_[*found].id == id ? std::optional(*found) : std::nullopt;
}

const PhotoItem* PhotoList::find(PhotoID id) const
{
    const auto at = position(id);
    return at ? &items_[*at] : nullptr;
}

std::optional<std::size_t> PhotoList::shownPosition(PhotoID id) const
{
    const auto at = position(id);
    if (!at)
        return std::nullopt;
    const auto found = std::find(shown_.begin(), shown_.end(), *at);
    return found == shown_.end() ? std::nullopt : std::optional<std::size_t>(found - shown_.begin());
}

void PhotoList::index()
{
    std::vector<std::pair<PhotoID, std::uint32_t>> ids; // sorted without a look at the items
    ids.reserve(items_.size());
    for (std::uint32_t at = 0; at < items_.size(); ++at)
        ids.emplace_back(items_[at].id, at);
    std::sort(ids.begin(), ids.end());
    byID_.resize(ids.size());
    std::transform(ids.begin(), ids.end(), byID_.begin(), [](const auto& id) { return id.second; });
}

PhotoList PhotoList::emptied() const
{
    PhotoList list;
    list.sortKey_ = sortKey_;
    list.filter_ = filter_;
    list.narrowing_ = narrowing_;
    return list;
}

void PhotoList::assign(std::vector<PhotoItem> items)
{
    items_ = std::move(items);
    listedBy_
        = std::is_sorted(items_.begin(), items_.end(), standsBeforeByName) ? ListedBy::name : ListedBy::hand;
    index();
    arrange(sortKey_, filter_);
}

void PhotoList::takeOverFrom(const PhotoList& earlier)
{
    for (const PhotoItem& item : earlier.items_) // a status stands in no row
        if (item.status.kind != PhotoItem::Status::Kind::idle)
            if (const auto at = position(item.id))
                items_[*at].status = item.status;
}

void PhotoList::arrange(std::optional<SortKey> key, std::optional<GridFilter> filter)
{
    sortKey_ = key;
    filter_ = filter;
    order_ = gridOrder(items_, listedBy_, sortKey_, test());
    arrangeStacks();
}

void PhotoList::narrow(std::span<const SmartAlbumRules> rules)
{
    narrowing_ = {rules.begin(), rules.end()};
    arrange(sortKey_, filter_);
}

bool PhotoList::isShown(const PhotoItem& item) const
{
    return (!filter_ || passes(item, *filter_))
        && std::all_of(narrowing_.begin(), narrowing_.end(),
            [&](SmartAlbumMatcher& matcher) { return matcher.matches(item); });
}

void PhotoList::arrangeStacks()
{
    auto arrangement = stacks_.arranged(order_, items_);
    shown_ = std::move(arrangement.shown);
    hidden_ = std::move(arrangement.hidden);
}

void PhotoList::setStacks(const std::vector<Stack>& stacks)
{
    stacks_ = StackPlaces(stacks);
    arrangeStacks();
}

std::optional<PhotoID> PhotoList::shownFor(PhotoID id) const
{
    const PhotoItem* const item = find(id);
    if (!item || !isShown(*item))
        return std::nullopt;
    const auto hidden = hidden_.find(id);
    return hidden == hidden_.end() ? id : hidden->second;
}

bool PhotoList::update(std::vector<PhotoItem> changed, const std::unordered_set<PhotoID>& gone)
{
    const bool inPlace
        = gone.empty() && std::all_of(changed.begin(), changed.end(), [this](const PhotoItem& item) {
              const PhotoItem* const listed = find(item.id);
              return listed && listed->filename == item.filename;
          });
    if (inPlace)
        return updateInPlace(std::move(changed));
    rearrange(std::move(changed), gone);
    return true;
}

bool PhotoList::updateInPlace(std::vector<PhotoItem> changed)
{
    const auto standsElsewhere = [this](const PhotoItem& before, const PhotoItem& after) {
        if (isShown(before) != isShown(after))
            return true;
        return sortKey_ && (standsBefore(before, after, *sortKey_) || standsBefore(after, before, *sortKey_));
    };
    std::vector<std::uint32_t> moved;
    for (PhotoItem& item : changed) {
        const auto at = *position(item.id);
        if (standsElsewhere(items_[at], item))
            moved.push_back(at);
        item.status = items_[at].status;
        items_[at] = std::move(item);
    }
    std::sort(moved.begin(), moved.end());
    moved.erase(std::unique(moved.begin(), moved.end()), moved.end());
    if (moved.empty())
        return false;
    updateGridOrder(order_, items_, moved, sortKey_, test());
    arrangeStacks();
    return true;
}

void PhotoList::rearrange(std::vector<PhotoItem> changed, const std::unordered_set<PhotoID>& gone)
{
    std::unordered_set<PhotoID> replaced = gone;
    std::erase_if(changed, [&](PhotoItem& item) {
        if (const PhotoItem* const listed = find(item.id))
            item.status = listed->status;
        return !replaced.insert(item.id).second; // given twice
    });
    std::erase_if(items_, [&](const PhotoItem& item) { return replaced.contains(item.id); });
    std::sort(changed.begin(), changed.end(), standsBeforeByName);
    const auto kept = static_cast<std::ptrdiff_t>(items_.size());
    items_.insert(items_.end(), std::move_iterator(changed.begin()), std::move_iterator(changed.end()));
    std::inplace_merge(items_.begin(), items_.begin() + kept, items_.end(), standsBeforeByName);
    index();
    arrange(sortKey_, filter_);
}

} // namespace korvo
