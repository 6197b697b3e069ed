#pragma once

#include "base/Enum.h"
#include "catalog/LibrarySource.h"
#include "catalog/Tree.h"

namespace korvo {

/// One line of the sidebar.
struct SidebarNode {
    enum class Kind { heading, all, source, folder, project, album, smartAlbum, keyword, person };

    Kind kind = Kind::heading;
    std::int64_t id = 0; ///< of the folder, project…; of a source its kind; of a heading its number
    std::string name;
    std::optional<std::int64_t> count;
    std::string hint = {}; ///< a folder's whole path
    std::vector<SidebarNode> children = {};
};

KORVO_ENUM(SidebarNode::Kind, heading, all, source, folder, project, album, smartAlbum, keyword, person)

/// Which line it is, whatever it is called.
struct SidebarKey {
    SidebarNode::Kind kind = SidebarNode::Kind::heading;
    std::int64_t id = 0;
    auto operator<=>(const SidebarKey&) const = default;
};

/// The sidebar's lines: headings with the library's own sources, folders, projects with their albums, smart
/// albums, keywords and people below them. Photos that have not been counted yet have no count.
enum class PhotosCounted { yes, notYet };
std::vector<SidebarNode> sidebarTree(const LibraryTree& tree, PhotosCounted counted = PhotosCounted::yes);

/// What choosing a line lists; nothing at all for a heading. Keywords have no source of their own.
std::optional<std::optional<LibrarySource>> sourceOf(const SidebarKey& key);
/// The line that stands for a source.
SidebarKey keyOf(const std::optional<LibrarySource>& source);

/// A line as text to be kept, "project:3" or "heading:keywords"; of others than headings by their ids, which
/// for the library's own sources are of this version alone.
std::string lineText(const SidebarKey& key);
/// Which line that is; nothing for a text of another version.
std::optional<SidebarKey> parseLine(std::string_view text);

bool canBeRenamed(SidebarNode::Kind kind);
bool isOrdered(SidebarNode::Kind kind); ///< by hand, among its siblings
bool canBeDeleted(SidebarNode::Kind kind);
bool takesPhotos(const SidebarKey& key);

/// Where a line is dropped: into another, or beside it.
enum class DropAt { into, above, below };

/// Whether one line can be dropped there.
bool canBeMoved(const SidebarKey& what, const SidebarKey& onto, DropAt at = DropAt::into);
/// The lines that a project, an album or a keyword can be moved into, as they stand in the tree; the heading
/// stands for the top.
std::vector<SidebarNode> placesFor(const std::vector<SidebarNode>& tree, const SidebarKey& what);

} // namespace korvo
