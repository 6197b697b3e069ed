#include "app/view/AlbumOrder.h"
#include "catalog/store/LibraryActions.h"

#include <algorithm>
#include <unordered_set>

namespace korvo {

namespace {

PhotoID idAt(const PhotoList& list, std::size_t place)
{
    return list.items()[list.shown()[place]].id;
}

/// Where the photos stand among the shown ones, ascending.
std::vector<std::size_t> placesOf(const PhotoList& list, std::span<const PhotoID> ids)
{
    const std::unordered_set<PhotoID> wanted(ids.begin(), ids.end());
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < list.shown().size(); ++place)
        if (wanted.contains(idAt(list, place)))
            places.push_back(place);
    return places;
}

/// Whether members of one stack, which stand together whatever is placed between them, are before and behind.
bool splitsStack(const PhotoList& list, std::size_t place)
{
    if (place == 0 || place >= list.shown().size())
        return false;
    const auto stackAt = [&](std::size_t each) { return list.items()[list.shown()[each]].stackID; };
    return stackAt(place) && stackAt(place) == stackAt(place - 1);
}

} // namespace

std::optional<std::int64_t> shownAlbum(const LibraryStore& store)
{
    const auto& source = store.source();
    return source && source->kind == LibrarySource::Kind::album ? std::optional(source->id) : std::nullopt;
}

bool isArrangedByHand(const LibraryStore& store)
{
    return shownAlbum(store) && !store.list().sortKey();
}

void placeInAlbum(LibraryStore& store, std::span<const PhotoID> ids, std::size_t place)
{
    if (!isArrangedByHand(store))
        return;
    const auto& list = store.list();
    std::vector<PhotoID> moved;
    for (const auto at : placesOf(list, ids))
        moved.push_back(idAt(list, at));
    const std::unordered_set<PhotoID> leaving(moved.begin(), moved.end());
    while (place < list.shown().size() && leaving.contains(idAt(list, place)))
        ++place;
    const auto before = place < list.shown().size() ? std::optional(idAt(list, place)) : std::nullopt;
    moveInAlbum(store, *shownAlbum(store), moved, before);
}

void stepInAlbum(LibraryStore& store, std::span<const PhotoID> ids, int places)
{
    const auto& list = store.list();
    const auto at = placesOf(list, ids);
    if (at.empty() || (places < 0 && at.front() == 0))
        return;
    auto place = places < 0 ? at.front() - 1 : std::min(at.back() + 2, list.shown().size());
    while (splitsStack(list, place))
        place = places < 0 ? place - 1 : place + 1;
    placeInAlbum(store, ids, place);
}

} // namespace korvo
