#include "app/view/SidebarActions.h"

#include "app/view/Marking.h"
#include "base/Text.h"
#include "catalog/RenameKeyword.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"

#include <algorithm>

namespace korvo {

namespace {

using Kind = SidebarNode::Kind;
using Parent = std::optional<std::int64_t>;

struct Siblings {
    Parent parent;
    std::vector<std::int64_t> ids; // in their order
};

struct Line {
    std::int64_t id;
    Parent parent;
};

void addProjects(std::vector<Line>& lines, const std::vector<ProjectNode>& nodes)
{
    for (const auto& node : nodes) {
        lines.push_back({node.id, node.parentID});
        addProjects(lines, node.children);
    }
}

/// Those of the kinds that are arranged by hand; none of another.
std::vector<Line> linesOf(const LibraryTree& tree, Kind kind)
{
    std::vector<Line> lines;
    if (kind == Kind::project)
        addProjects(lines, tree.projects);
    if (kind == Kind::album)
        for (const auto& album : tree.albums)
            lines.push_back({album.id, album.parentID});
    if (kind == Kind::smartAlbum)
        for (const auto& album : tree.smartAlbums)
            lines.push_back({album.id, std::nullopt});
    return lines;
}

/// The projects, albums or smart albums among which this one stands; none when it is gone, or is of another
/// kind.
std::optional<Siblings> siblingsOf(const LibraryTree& tree, const SidebarKey& key)
{
    const auto lines = linesOf(tree, key.kind);
    const auto own = std::ranges::find(lines, key.id, &Line::id);
    if (own == lines.end())
        return std::nullopt;
    Siblings siblings{own->parent, {}};
    for (const auto& line : lines)
        if (line.parent == own->parent)
            siblings.ids.push_back(line.id);
    return siblings;
}

void place(LibraryStore& store, const SidebarKey& what, Parent parent, Parent before)
{
    if (what.kind == Kind::project)
        placeProject(store, what.id, parent, before);
    else if (what.kind == Kind::album)
        placeAlbum(store, what.id, parent, before);
    else if (what.kind == Kind::smartAlbum)
        placeSmartAlbum(store, what.id, before);
}

} // namespace

void renameLine(LibraryStore& store, const SidebarKey& key, std::string_view name)
{
    if (key.kind == Kind::project)
        renameProject(store, key.id, name);
    else if (key.kind == Kind::album)
        renameAlbum(store, key.id, name);
    else if (key.kind == Kind::smartAlbum)
        changeSmartAlbum(store, key.id, name, std::nullopt);
    else if (key.kind == Kind::keyword)
        store.perform("Rename Keyword", [&](Catalog& catalog) { renameKeyword(catalog, key.id, name); });
}

void deleteLine(LibraryStore& store, const SidebarKey& key)
{
    switch (key.kind) {
    case Kind::folder:
        return removeFolder(store, key.id);
    case Kind::project:
        return deleteProject(store, key.id);
    case Kind::album:
        return deleteAlbum(store, key.id);
    case Kind::smartAlbum:
        return deleteSmartAlbum(store, key.id);
    case Kind::keyword:
        return deleteKeyword(store, key.id);
    default:
        return;
    }
}

std::string dropPhotos(LibraryStore& store, const SidebarNode& onto, std::span<const PhotoID> ids)
{
    const auto photos = counted(ids.size(), "photo");
    switch (onto.kind) {
    case Kind::album:
        addToAlbum(store, onto.id, ids);
        return "Added " + photos + " to “" + onto.name + "”.";
    case Kind::project:
        assignToProject(store, ids, onto.id);
        return "Moved " + photos + " to “" + onto.name + "”.";
    case Kind::keyword:
        editKeywords(store, ids, {.added = {onto.name}, .removed = {}});
        return "Gave " + photos + " the keyword “" + onto.name + "”.";
    case Kind::source:
        flag(store, ids);
        return "Flagged " + photos + ".";
    default:
        return {};
    }
}

Parent projectAt(const LibraryTree& tree, const SidebarKey& key)
{
    if (key.kind == Kind::project)
        return key.id;
    const auto siblings = siblingsOf(tree, key);
    return siblings ? siblings->parent : std::nullopt;
}

void moveLine(LibraryStore& store, const SidebarKey& what, const SidebarKey& onto, DropAt at)
{
    const auto into = onto.kind == Kind::heading ? std::nullopt : std::optional(onto.id);
    if (what.kind == Kind::keyword)
        return moveKeyword(store, what.id, into);
    if (at == DropAt::into)
        return place(store, what, into, std::nullopt);
    const auto siblings = siblingsOf(store.tree(), onto);
    if (!siblings)
        return;
    const auto& ids = siblings->ids;
    auto before = std::find(ids.begin(), ids.end(), onto.id);
    if (at == DropAt::below)
        ++before;
    place(store, what, siblings->parent, before == ids.end() ? std::nullopt : std::optional(*before));
}

void stepLine(LibraryStore& store, const SidebarKey& what, int places)
{
    const auto siblings = siblingsOf(store.tree(), what);
    if (!siblings)
        return;
    const auto& ids = siblings->ids;
    const auto at = std::find(ids.begin(), ids.end(), what.id) - ids.begin();
    const auto to = at + places;
    if (to >= 0 && to < std::ssize(ids))
        moveLine(store, what, {what.kind, ids[static_cast<std::size_t>(to)]},
            places < 0 ? DropAt::above : DropAt::below);
}

} // namespace korvo
