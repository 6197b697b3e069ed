#pragma once

#include "catalog/GridOrder.h"
#include "catalog/PhotoItem.h"
#include "catalog/SmartAlbumMatcher.h"
#include "catalog/StackPlaces.h"

#include <optional>
#include <span>
#include <stop_token>
#include <unordered_set>
#include <utility>
#include <vector>

namespace korvo {

/// How the photos of a list are shown.
struct ListArrangement {
    std::optional<SortKey> key; // without one the source's order stands
    std::optional<GridFilter> filter = GridFilter::unratedOrBetter;
    std::vector<SmartAlbumRules> narrowing; // only photos that match all of these too are shown

    friend bool operator==(const ListArrangement&, const ListArrangement&) = default;
};

/// The loaded photos of a source, and which of them the grid shows in which order.
class PhotoList {
public:
    /// All photos, in no order that means anything: as they were read.
    const std::vector<PhotoItem>& items() const { return items_; }
    /// Positions in items() of the photos shown, in the order shown.
    const std::vector<std::uint32_t>& shown() const { return shown_; }
    /// How the list is to be shown; it may still be shown as it was before.
    const ListArrangement& arrangement() const { return wished_; }
    std::optional<SortKey> sortKey() const { return wished_.key; }
    std::optional<GridFilter> filter() const { return wished_.filter; }
    /// Whether it is shown as it is to be.
    bool isArranged() const { return wished_ == shownAs_; }

    /// The photo of an id; null when it is not in the list.
    const PhotoItem* find(PhotoID id) const;
    /// Where the photo stands among the shown ones.
    std::optional<std::size_t> shownPosition(PhotoID id) const;
    /// The same of that of several which stands last.
    std::optional<std::size_t> lastShownPosition(std::span<const PhotoID> ids) const;

    /// The photo that the grid shows for this one: itself, or the pick of its collapsed stack; nothing when
    /// it is not in the list or the filter hides it.
    std::optional<PhotoID> shownFor(PhotoID id) const;

    /// Takes the photos of a source that lists them by their names, or as they stand here. Throws Stopped
    /// after a stop request; the list is of no use then.
    void assign(std::vector<PhotoItem> items, ListedBy by, const std::stop_token& stop = {});
    /// All stacks of the library, whose members stand together or behind their pick.
    void setStacks(const std::vector<Stack>& stacks);
    /// The same where those of these ids alone have changed, after the photos that they won or lost.
    void updateStacks(const std::set<std::int64_t>& ids, const std::vector<Stack>& stacks);
    /// How many members the photo's stack has; 0 for one that is in none.
    std::size_t stackSize(const PhotoItem& item) const
    {
        return item.stackID ? stacks_.size(*item.stackID) : 0;
    }

    /// Which photos are shown in which order.
    struct Order {
        ListArrangement as;
        std::vector<std::uint32_t> order; // positions in items()
        StackPlaces::Arrangement stacks; // the same with the stacks in their places
    };
    /// Says how the list is to be shown; show() does so.
    void wish(ListArrangement as) { wished_ = std::move(as); }
    /// Finds out the order that is wished. May run on another thread while nothing changes this list. Throws
    /// Stopped after a stop request.
    Order ordered(const std::stop_token& stop = {}) const;
    void show(Order order);
    /// All three.
    void arrange(ListArrangement as);

    /// Takes new values for listed photos, adds others, and drops `gone`. A photo that was not listed goes
    /// where its file name stands, and to the end of a list that was ordered by hand. Returns whether the
    /// photos shown or their order may have changed.
    bool update(std::vector<PhotoItem> changed, const std::unordered_set<PhotoID>& gone);

private:
    std::optional<std::uint32_t> position(PhotoID id) const;
    /// Takes the new value of a photo; returns whether it may now be shown elsewhere.
    bool replace(std::uint32_t at, PhotoItem item);
    /// Returns whether any was there.
    bool drop(const std::unordered_set<PhotoID>& gone);
    /// Adds the photos, each once, to all but the orders; returns their positions.
    std::vector<std::uint32_t> add(std::vector<PhotoItem> added);
    /// Puts photos where they belong now, each once: in the listing, and among the shown.
    void reorder(std::vector<std::uint32_t> unlisted, std::vector<std::uint32_t> moved);
    void index(const std::stop_token& stop);
    void arrangeStacks();
    bool isShown(const PhotoItem& item) const { return isShown_(item); }

    std::vector<PhotoItem> items_;
    std::vector<std::uint32_t> byID_; // positions in items_, ascending by id
    Listing listing_;
    std::vector<std::uint32_t> order_; // by sort key and filter alone
    std::vector<std::uint32_t> shown_; // the same with the stacks in their places
    std::unordered_map<PhotoID, PhotoID> hidden_; // in collapsed stacks, and who is shown for them
    StackPlaces stacks_;
    ListArrangement wished_;
    ListArrangement shownAs_;
    PhotoTest isShown_ = testOf(shownAs_.filter);
};

} // namespace korvo
