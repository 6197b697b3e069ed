#include "catalog/store/PhotoList.h"

#include "base/StopCheck.h"
#include "catalog/PutInto.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <numeric>
#include <utility>

namespace korvo {

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

std::optional<std::size_t> PhotoList::lastShownPosition(std::span<const PhotoID> ids) const
{
    std::vector<bool> isAskedFor(items_.size());
    for (const PhotoID id : ids)
        if (const auto at = position(id))
            isAskedFor[*at] = true;
    const auto isOne = [&](std::uint32_t at) { return isAskedFor[at]; };
    const auto last = std::find_if(shown_.rbegin(), shown_.rend(), isOne);
    return last == shown_.rend() ? std::nullopt : std::optional<std::size_t>(shown_.rend() - last - 1);
}

void PhotoList::index(const std::stop_token& stop)
{
    std::vector<std::pair<PhotoID, std::uint32_t>> ids; // sorted without a look at the items
    ids.reserve(items_.size());
    for (std::uint32_t at = 0; at < items_.size(); ++at)
        ids.emplace_back(items_[at].id, at);
    StopCheck check(stop);
    std::sort(ids.begin(), ids.end(), check.with(std::less()));
    byID_.resize(ids.size());
    std::transform(ids.begin(), ids.end(), byID_.begin(), [](const auto& id) { return id.second; });
}

namespace {

PhotoTest shownTest(const ListArrangement& as)
{
    std::vector<SmartAlbumMatcher> matchers(as.narrowing.begin(), as.narrowing.end());
    return [passesFilter = testOf(as.filter), matchers = std::move(matchers)](const PhotoItem& item) mutable {
        return passesFilter(item)
            && std::all_of(matchers.begin(), matchers.end(),
                [&](SmartAlbumMatcher& matcher) { return matcher.matches(item); });
    };
}

} // namespace

void PhotoList::assign(std::vector<PhotoItem> items, ListedBy by, const std::stop_token& stop)
{
    items_ = std::move(items);
    listing_ = listed(items_, by, stop);
    index(stop);
    show(ordered(stop));
}

PhotoList::Order PhotoList::ordered(const std::stop_token& stop) const
{
    auto order = gridOrder(items_, listing_, wished_.key, shownTest(wished_), stop);
    auto stacks = stacks_.arranged(order, items_, stop);
    return {wished_, std::move(order), std::move(stacks)};
}

void PhotoList::show(Order order)
{
    shownAs_ = std::move(order.as);
    isShown_ = shownTest(shownAs_);
    order_ = std::move(order.order);
    shown_ = std::move(order.stacks.shown);
    hidden_ = std::move(order.stacks.hidden);
}

void PhotoList::arrange(ListArrangement as)
{
    wish(std::move(as));
    show(ordered());
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

void PhotoList::updateStacks(const std::set<std::int64_t>& ids, const std::vector<Stack>& stacks)
{
    stacks_.update(ids, stacks);
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

namespace {

void keepOneOfEach(std::vector<std::uint32_t>& positions)
{
    std::sort(positions.begin(), positions.end());
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
}

} // namespace

bool PhotoList::update(std::vector<PhotoItem> changed, const std::unordered_set<PhotoID>& gone)
{
    const bool dropped = drop(gone);
    std::vector<PhotoItem> added;
    std::vector<std::uint32_t> unlisted, moved; // in listing_, in order_
    for (PhotoItem& item : changed) {
        const auto at = position(item.id);
        if (!at) {
            added.push_back(std::move(item));
            continue;
        }
        if (listing_.by == ListedBy::name && items_[*at].filename != item.filename)
            unlisted.push_back(*at);
        if (replace(*at, std::move(item)))
            moved.push_back(*at);
    }
    for (const auto at : add(std::move(added))) {
        unlisted.push_back(at);
        moved.push_back(at);
    }
    keepOneOfEach(unlisted);
    keepOneOfEach(moved);
    if (unlisted.empty() && moved.empty() && !dropped)
        return false;
    reorder(std::move(unlisted), std::move(moved));
    return true;
}

bool PhotoList::replace(std::uint32_t at, PhotoItem item)
{
    const PhotoItem before = std::exchange(items_[at], std::move(item));
    PhotoItem& after = items_[at];
    if (isShown(before) != isShown(after))
        return true;
    const auto key
        = shownAs_.key || listing_.by == ListedBy::hand ? shownAs_.key : std::optional(SortKey::name);
    return key && (standsBefore(before, after, *key) || standsBefore(after, before, *key));
}

bool PhotoList::drop(const std::unordered_set<PhotoID>& gone)
{
    std::vector<std::uint32_t> holes;
    for (const PhotoID id : gone)
        if (const auto at = position(id))
            holes.push_back(*at);
    if (holes.empty())
        return false;
    std::sort(holes.begin(), holes.end());
    constexpr auto none = std::numeric_limits<std::uint32_t>::max();
    std::vector<std::uint32_t> now(items_.size()); // where each photo is then
    std::iota(now.begin(), now.end(), 0U);
    for (const auto hole : holes)
        now[hole] = none;
    auto end = static_cast<std::uint32_t>(items_.size());
    for (const auto hole : holes) { // filled from the end, so that few photos are moved
        while (end > 0 && now[end - 1] == none)
            --end;
        if (hole >= end)
            break;
        items_[hole] = std::move(items_[--end]);
        now[end] = hole;
    }
    items_.resize(items_.size() - holes.size());
    for (auto* const order : {&byID_, &listing_.order, &order_}) {
        std::erase_if(*order, [&](std::uint32_t position) { return now[position] == none; });
        std::transform(order->begin(), order->end(), order->begin(),
            [&](std::uint32_t position) { return now[position]; });
    }
    return true;
}

std::vector<std::uint32_t> PhotoList::add(std::vector<PhotoItem> added)
{
    std::unordered_set<PhotoID> given;
    std::vector<std::uint32_t> positions;
    for (PhotoItem& item : added)
        if (given.insert(item.id).second) {
            positions.push_back(static_cast<std::uint32_t>(items_.size()));
            items_.push_back(std::move(item));
        }
    putInto(
        byID_, positions, [this](std::uint32_t a, std::uint32_t b) { return items_[a].id < items_[b].id; });
    return positions;
}

void PhotoList::reorder(std::vector<std::uint32_t> unlisted, std::vector<std::uint32_t> moved)
{
    const bool isMuch = moved.size() > items_.size() / 8; // more than ordering anew takes
    if (listing_.by == ListedBy::hand)
        listing_.order.insert(listing_.order.end(), unlisted.begin(), unlisted.end());
    else if (isMuch)
        listing_ = listed(items_, ListedBy::name);
    else if (!unlisted.empty())
        updateGridOrder(
            listing_.order, items_, listing_, std::move(unlisted), std::nullopt, testOf(std::nullopt));
    if (isMuch)
        order_ = gridOrder(items_, listing_, shownAs_.key, isShown_);
    else if (!moved.empty())
        updateGridOrder(order_, items_, listing_, std::move(moved), shownAs_.key, isShown_);
    arrangeStacks();
}

} // namespace korvo
