#include "app/view/Marking.h"

#include "base/Text.h"
#include "catalog/store/LibraryActions.h"

#include <algorithm>
#include <map>
#include <unordered_set>

namespace korvo {

namespace {

struct Marks {
    int rating = 0;
    bool flagged = false;
    auto operator<=>(const Marks&) const = default;
};

bool all(const std::vector<const PhotoItem*>& items, bool (*test)(const PhotoItem&))
{
    return std::all_of(items.begin(), items.end(), [test](const PhotoItem* item) { return test(*item); });
}

/// Whether the mark is taken back.
bool takesBack(const std::vector<const PhotoItem*>& items, Mark mark)
{
    if (mark == Mark::reject)
        return all(items, [](const PhotoItem& item) { return item.isRejected(); });
    return mark == Mark::toggleFlag && all(items, [](const PhotoItem& item) { return item.flagged; });
}

Marks marksAfter(const PhotoItem& item, Mark mark, bool takenBack)
{
    const int stars = starsOf(item);
    switch (mark) {
    case Mark::pick:
        return {stars, true};
    case Mark::reject:
        return takenBack ? Marks{stars, item.flagged} : Marks{rejectedWith(stars), false};
    case Mark::clear:
        return {stars, false};
    case Mark::toggleFlag:
        return takenBack ? Marks{item.rating, false} : Marks{stars, true};
    case Mark::oneStarMore:
        return {item.isRejected() ? stars : std::min(stars + 1, highestRating), item.flagged};
    case Mark::oneStarLess:
        return {item.isRejected() ? item.rating : std::max(stars - 1, 0), item.flagged};
    }
    return {};
}

std::string titleOf(Mark mark, bool takenBack)
{
    switch (mark) {
    case Mark::pick:
        return "Pick";
    case Mark::reject:
        return takenBack ? "Take Back Rejection" : "Reject";
    case Mark::clear:
        return "Clear Marks";
    case Mark::toggleFlag:
        return takenBack ? "Remove Flag" : "Flag";
    default:
        return "Set Rating";
    }
}

std::vector<const PhotoItem*> listedItems(const PhotoList& list, std::span<const PhotoID> ids)
{
    std::vector<const PhotoItem*> items;
    for (const PhotoID id : ids)
        if (const PhotoItem* const item = list.find(id))
            items.push_back(item);
    return items;
}

/// What the photos are is read from the catalog: the list may wait for what was changed last.
void giveMarks(Catalog& catalog, std::span<const PhotoID> ids, Mark mark, bool takenBack = false)
{
    std::map<int, std::vector<PhotoID>> byRating;
    std::map<bool, std::vector<PhotoID>> byFlag;
    for (const auto& item : catalog.photosByID(ids)) {
        const auto after = marksAfter(item, mark, takenBack);
        if (after.rating != item.rating && !(after.rating < 0 && item.isRejected()))
            byRating[after.rating].push_back(item.id);
        if (after.flagged != item.flagged)
            byFlag[after.flagged].push_back(item.id);
    }
    for (const auto& [rating, photos] : byRating)
        catalog.setRating(photos, rating);
    for (const auto& [flagged, photos] : byFlag)
        catalog.setFlagged(photos, flagged);
}

} // namespace

int starsOf(const PhotoItem& item)
{
    return std::clamp(item.isRejected() ? rejectedRating - item.rating : item.rating, 0, highestRating);
}

void setMark(LibraryStore& store, std::span<const PhotoID> ids, Mark mark)
{
    const auto items = listedItems(store.list(), ids);
    if (items.empty())
        return;
    const bool takenBack = takesBack(items, mark); // as the user sees them
    const auto change = [ids = std::vector(ids.begin(), ids.end()), mark, takenBack](
                            Catalog& catalog) { giveMarks(catalog, ids, mark, takenBack); };
    store.perform(titleOf(mark, takenBack), change, ids.size());
}

void flag(LibraryStore& store, std::span<const PhotoID> ids)
{
    const auto change = [ids = std::vector(ids.begin(), ids.end())](
                            Catalog& catalog) { giveMarks(catalog, ids, Mark::pick); };
    store.perform("Flag", change, ids.size());
}

void clickMark(LibraryStore& store, std::span<const PhotoID> ids, const MarkPart& part)
{
    const auto items = listedItems(store.list(), ids);
    switch (part.kind) {
    case MarkPart::Kind::star: {
        const bool isLast
            = std::ranges::all_of(items, [&](const PhotoItem* item) { return item->rating == part.stars; });
        return setRating(store, ids, isLast ? 0 : part.stars);
    }
    case MarkPart::Kind::flag:
        return setMark(store, ids, Mark::toggleFlag);
    case MarkPart::Kind::cross: {
        std::vector<PhotoID> rejected;
        for (const PhotoItem* const item : items)
            if (item->isRejected())
                rejected.push_back(item->id);
        return setMark(store, rejected, Mark::reject);
    }
    case MarkPart::Kind::label:
        break;
    }
}

std::string removeOrReject(LibraryStore& store, std::span<const PhotoID> ids)
{
    if (const auto source = store.source(); source && source->kind == LibrarySource::Kind::album) {
        removeFromAlbum(store, source->id, ids);
        return "Took " + counted(ids.size(), "photo") + " out of the album.";
    }
    std::vector<PhotoID> kept;
    for (const PhotoItem* const item : listedItems(store.list(), ids))
        if (!item->isRejected())
            kept.push_back(item->id);
    if (kept.empty())
        return "Already rejected. “Remove from Library…” takes photos out for good; their files stay.";
    setMark(store, kept, Mark::reject);
    return "Rejected " + counted(kept.size(), "photo") + "; the filter “Rejected” shows "
        + (kept.size() == 1 ? "it." : "them.");
}

} // namespace korvo
