#pragma once

#include "catalog/GridChoices.h"

#include <optional>
#include <stop_token>
#include <vector>

namespace korvo {

/// Whether `a` stands before `b`; ties go by file name, then by id. The order is total.
bool standsBefore(const PhotoItem& a, const PhotoItem& b, SortKey key);

/// How a source orders its photos before they are sorted by anything else.
enum class ListedBy : std::uint8_t { name, hand };

/// The order of a source. Photos themselves stay where their texts lie in memory, which makes looking at all
/// of them several times as fast.
struct Listing {
    ListedBy by = ListedBy::name;
    std::vector<std::uint32_t> order; // positions in the items
};

/// The listing of photos as they were read: by their names, or as they stand. Throws Stopped after a stop
/// request, as gridOrder does.
Listing listed(const std::vector<PhotoItem>& items, ListedBy by, const std::stop_token& stop = {});

/// Moves photos to where the listing has them.
void putInOrder(std::vector<PhotoItem>& items, Listing listing);

/// The positions in `items` of the photos shown, in the order shown.
std::vector<std::uint32_t> gridOrder(const std::vector<PhotoItem>& items, const Listing& listing,
    std::optional<SortKey> key, const PhotoTest& isShown, const std::stop_token& stop = {});

/// Brings an order that has a key, or is the listing's own, up to date after the items at `changed` (each
/// once) took new values in place or came.
void updateGridOrder(std::vector<std::uint32_t>& order, const std::vector<PhotoItem>& items,
    const Listing& listing, std::vector<std::uint32_t> changed, std::optional<SortKey> key,
    const PhotoTest& isShown);

} // namespace korvo
