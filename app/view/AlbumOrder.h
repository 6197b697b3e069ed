#pragma once

#include "catalog/store/LibraryStore.h"

namespace korvo {

// The order that the user gives the photos of an album.

/// The album that is shown, if one is.
std::optional<std::int64_t> shownAlbum(const LibraryStore& store);
/// Whether an album is shown in its own order, which alone can be changed by hand.
bool isArrangedByHand(const LibraryStore& store);
/// Puts photos, in the order in which they are shown, before the shown one of that place, or behind the last.
void placeInAlbum(LibraryStore& store, std::span<const PhotoID> ids, std::size_t place);
/// Puts photos together one place earlier (-1) or later (1).
void stepInAlbum(LibraryStore& store, std::span<const PhotoID> ids, int places);

} // namespace korvo
