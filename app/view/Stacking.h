#pragma once

#include "catalog/store/LibraryStore.h"

namespace korvo {

// What commands do to the stacks of the photos that they act on, each as one step of undo.

/// Stacks the photos; the pick of a collapsed stack brings its members along.
void stackPhotos(LibraryStore& store, std::span<const PhotoID> ids, std::optional<PhotoID> pick);
void unstackPhotos(LibraryStore& store, std::span<const PhotoID> ids);
/// Collapses their stacks, or expands them: all become as the first of them is not.
void toggleStacks(LibraryStore& store, std::span<const PhotoID> ids);
void makePick(LibraryStore& store, PhotoID id);
/// Moves a listed photo one place earlier (-1) or later (1) behind the pick of its stack. Returns what is to
/// be said to the user, as of the pick, which stays first; nothing as a rule.
std::string stepInStack(LibraryStore& store, PhotoID id, int places);

} // namespace korvo
