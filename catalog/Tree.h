#pragma once

#include "base/Record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvo {

// The records of the sidebar.

struct FolderRow {
    std::int64_t id = 0;
    std::string path;
};
KORVO_RECORD(FolderRow, id, path)

/// One project as it is stored.
struct ProjectRow {
    std::int64_t id = 0;
    std::string name;
    std::string kind; // "project", "album" or "folder"
    std::optional<std::int64_t> parentID;
    std::int64_t position;
};

/// One node of the project tree.
struct ProjectNode {
    std::int64_t id = 0;
    std::string name;
    std::string kind;
    std::optional<std::int64_t> parentID;
    std::int64_t count = 0; // of the masters assigned to the project itself
    std::vector<ProjectNode> children;
};
KORVO_RECORD(ProjectNode, id, name, kind, parentID, count, children)

struct AlbumRow {
    std::int64_t id = 0;
    std::string name;
    std::optional<std::int64_t> parentID; // the project that holds the album
    std::int64_t count = 0; // of its members
};
KORVO_RECORD(AlbumRow, id, name, parentID, count)

struct SmartAlbumRow {
    std::int64_t id = 0;
    std::string name;
    std::string rules; // JSON
};
KORVO_RECORD(SmartAlbumRow, id, name, rules)

struct KeywordRow {
    std::int64_t id = 0;
    std::string name;
    std::optional<std::int64_t> parentID;
};
KORVO_RECORD(KeywordRow, id, name, parentID)

struct PersonRow {
    std::int64_t id = 0;
    std::string name;
    std::int64_t count = 0; // of the masters the person is in
};
KORVO_RECORD(PersonRow, id, name, count)

struct LibraryTotals {
    std::int64_t photos; // rows, versions included
    std::int64_t withoutAltText; // rows
    std::int64_t dirty; // rows not yet written into their files
    std::int64_t outsideProjects; // masters
    std::int64_t masters;
    std::int64_t mastersWithoutAltText;
};
KORVO_RECORD(LibraryTotals, photos, withoutAltText, dirty, outsideProjects, masters, mastersWithoutAltText)

/// Everything the sidebar shows.
struct LibraryTree {
    std::vector<FolderRow> folders;
    std::vector<ProjectNode> projects;
    std::vector<AlbumRow> albums;
    std::vector<SmartAlbumRow> smartAlbums;
    std::vector<KeywordRow> keywords;
    std::vector<PersonRow> people;
    LibraryTotals totals;
};
KORVO_RECORD(LibraryTree, folders, projects, albums, smartAlbums, keywords, people, totals)

/// Nests the projects under the ones that their parent ids name, siblings in the order of the list. A project
/// whose parent is not in the list is a root, and so is the first of those that lie in each other in a
/// circle, so that nothing ever drops out of sight.
std::vector<ProjectNode> projectTree(const std::vector<ProjectRow>& projects,
    const std::vector<std::pair<std::int64_t, std::int64_t>>& countsByProject);

} // namespace korvo
