#pragma once

#include "catalog/KeywordList.h"
#include "catalog/store/LibraryStore.h"

namespace korvo {

// What the user does to photos, projects, albums and keywords: each is one LibraryStore::perform under its
// title in the Edit menu, and throws as that does.

void setRating(LibraryStore& store, std::span<const PhotoID> ids, int rating);
void setLabel(LibraryStore& store, std::span<const PhotoID> ids, PhotoLabel label);
/// Changes one field, under its title.
void setMetadataField(
    LibraryStore& store, std::span<const PhotoID> ids, std::size_t field, std::string_view text);
/// Adds and takes away keywords; each photo keeps its others.
void editKeywords(LibraryStore& store, std::span<const PhotoID> ids, const KeywordEdit& edit);
/// Changes what each photo's own edits are, in one step of that title. Throws JsonError for a photo whose
/// stored edits cannot be read, and then changes none. `change` owns all that it uses, as in perform.
void changeEdits(LibraryStore& store, std::string title, std::span<const PhotoID> ids,
    const std::function<void(PhotoEdits&)>& change);
void removePhotos(LibraryStore& store, std::span<const PhotoID> ids);
void removeFolder(LibraryStore& store, std::int64_t id);
std::int64_t createProject(
    LibraryStore& store, std::string_view name, std::string_view kind, std::optional<std::int64_t> parent);
void renameProject(LibraryStore& store, std::int64_t id, std::string_view name);
void placeProject(LibraryStore& store, std::int64_t id, std::optional<std::int64_t> parent,
    std::optional<std::int64_t> before);
void deleteProject(LibraryStore& store, std::int64_t id);
void assignToProject(LibraryStore& store, std::span<const PhotoID> ids, std::optional<std::int64_t> project);
std::int64_t createAlbum(LibraryStore& store, std::string_view name,
    std::optional<std::int64_t> parentProject, std::span<const PhotoID> photos = {});
void renameAlbum(LibraryStore& store, std::int64_t id, std::string_view name);
void placeAlbum(LibraryStore& store, std::int64_t id, std::optional<std::int64_t> parentProject,
    std::optional<std::int64_t> before);
void deleteAlbum(LibraryStore& store, std::int64_t id);
void addToAlbum(LibraryStore& store, std::int64_t album, std::span<const PhotoID> photos);
void moveInAlbum(
    LibraryStore& store, std::int64_t album, std::span<const PhotoID> photos, std::optional<PhotoID> before);
void removeFromAlbum(LibraryStore& store, std::int64_t album, std::span<const PhotoID> photos);
std::int64_t createKeyword(LibraryStore& store, std::string_view name, std::optional<std::int64_t> parent);
void moveKeyword(LibraryStore& store, std::int64_t id, std::optional<std::int64_t> parent);
void deleteKeyword(LibraryStore& store, std::int64_t id);

} // namespace korvo
