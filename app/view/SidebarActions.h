#pragma once

#include "app/view/SidebarTree.h"
#include "catalog/store/LibraryStore.h"

namespace korvo {

/// The project that new projects and albums made at a line belong in: the line's own, or an album's.
std::optional<std::int64_t> projectAt(const LibraryTree& tree, const SidebarKey& key);

// What is done to a line, each one step of undo. All throw DatabaseError.
void renameLine(LibraryStore& store, const SidebarKey& key, std::string_view name);
/// Folders, albums, projects, smart albums and keywords; photos' files always stay.
void deleteLine(LibraryStore& store, const SidebarKey& key);
/// Puts photos where they were dropped: into an album, a project, under a keyword, or among the flagged.
/// Returns a sentence that says so.
std::string dropPhotos(LibraryStore& store, const SidebarNode& onto, std::span<const PhotoID> ids);
/// Puts a project or an album into a project, a keyword into a keyword, or each at the top when dropped on
/// its heading; or a project, an album or a smart album beside another one.
void moveLine(LibraryStore& store, const SidebarKey& what, const SidebarKey& onto, DropAt at = DropAt::into);
/// Puts a project, an album or a smart album one place further up (-1) or down (1) among its siblings, if
/// there is one.
void stepLine(LibraryStore& store, const SidebarKey& what, int places);

} // namespace korvo
