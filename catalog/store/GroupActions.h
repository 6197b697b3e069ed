#pragma once

#include "catalog/AutoStack.h"
#include "catalog/Stack.h"
#include "catalog/store/LibraryStore.h"

namespace korvo {

// What the user does to versions, stacks and smart albums, as LibraryActions.h has it for all else.

/// Makes a version of each; in an album each stands there behind its photo. The versions in the order of
/// the photos.
std::vector<PhotoID> createVersions(LibraryStore& store, std::span<const PhotoID> photos, UnixTime addedAt);
void renameVersion(LibraryStore& store, PhotoID version, std::string_view name);
void removeVersion(LibraryStore& store, PhotoID version);
std::int64_t createStack(LibraryStore& store, std::span<const PhotoID> photos, std::optional<PhotoID> pick);
void setPick(LibraryStore& store, std::int64_t stack, PhotoID photo);
void moveInStack(LibraryStore& store, std::int64_t stack, PhotoID photo, std::size_t position);
/// Stacks what is shown, as AutoStackPlan does. Nothing happens when no stack comes of it.
void autoStack(LibraryStore& store, double interval);
/// Makes the stacks of a plan, but for photos that have been stacked or removed since.
void autoStack(LibraryStore& store, const AutoStackPlan& plan);
std::int64_t createSmartAlbum(LibraryStore& store, std::string_view name, const SmartAlbumRules& rules);
/// Without rules those that are stored stay, even such as cannot be read.
void changeSmartAlbum(
    LibraryStore& store, std::int64_t id, std::string_view name, const std::optional<SmartAlbumRules>& rules);
void placeSmartAlbum(LibraryStore& store, std::int64_t id, std::optional<std::int64_t> before);
void deleteSmartAlbum(LibraryStore& store, std::int64_t id);

} // namespace korvo
