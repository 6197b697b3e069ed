#include "app/view/SidebarTree.h"

#include "base/Text.h"

#include <array>
#include <filesystem>
#include <map>

namespace korvo {

namespace {

using Kind = SidebarNode::Kind;
using SourceKind = LibrarySource::Kind;
using Parent = std::optional<std::int64_t>;

enum Heading : std::int64_t { library, folders, projects, smartAlbums, keywords, people };
KORVO_ENUM(Heading, library, folders, projects, smartAlbums, keywords, people)

struct OwnSource {
    SourceKind source;
    const char* name;
};
constexpr std::array ownSources{OwnSource{SourceKind::flagged, "Flagged"},
    OwnSource{SourceKind::recentlyAdded, "Recently Added"}, OwnSource{SourceKind::videos, "Videos"},
    OwnSource{SourceKind::noAltText, "No ALT Text"}, OwnSource{SourceKind::faces, "Faces"},
    OwnSource{SourceKind::places, "Places"}};

SidebarNode heading(Heading which, const char* name, std::vector<SidebarNode> children)
{
    return {Kind::heading, which, name, std::nullopt, {}, std::move(children)};
}

std::vector<SidebarNode> libraryLines(const LibraryTotals& totals)
{
    std::vector<SidebarNode> lines{{Kind::all, 0, "All Photos", totals.masters}};
    for (const auto& own : ownSources)
        lines.push_back({Kind::source, static_cast<std::int64_t>(own.source), own.name,
            own.source == SourceKind::noAltText ? std::optional(totals.mastersWithoutAltText)
                                                : std::nullopt});
    return lines;
}

std::vector<SidebarNode> folderLines(const std::vector<FolderRow>& rows)
{
    std::vector<SidebarNode> lines;
    for (const auto& row : rows) {
        const auto name = std::filesystem::path(row.path).filename().string();
        lines.push_back({Kind::folder, row.id, name.empty() ? row.path : name, std::nullopt, row.path});
    }
    return lines;
}

using AlbumsByParent = std::map<Parent, std::vector<SidebarNode>>;

AlbumsByParent albumLines(const std::vector<AlbumRow>& rows)
{
    AlbumsByParent lines;
    for (const auto& row : rows)
        lines[row.parentID].push_back({Kind::album, row.id, row.name, row.count});
    return lines;
}

std::vector<SidebarNode> projectLines(const std::vector<ProjectNode>& nodes, AlbumsByParent& albums)
{
    std::vector<SidebarNode> lines;
    for (const auto& node : nodes) {
        SidebarNode line{
            Kind::project, node.id, node.name, node.count, {}, projectLines(node.children, albums)};
        if (auto own = albums.extract(node.id))
            std::move(own.mapped().begin(), own.mapped().end(), std::back_inserter(line.children));
        lines.push_back(std::move(line));
    }
    return lines;
}

using KeywordsByParent = std::map<Parent, std::vector<const KeywordRow*>>;

std::vector<SidebarNode> keywordLines(const KeywordsByParent& rows, Parent parent)
{
    std::vector<SidebarNode> lines;
    if (const auto found = rows.find(parent); found != rows.end())
        for (const auto* const row : found->second)
            lines.push_back(
                {Kind::keyword, row->id, row->name, std::nullopt, {}, keywordLines(rows, row->id)});
    return lines;
}

std::vector<SidebarNode> keywordLines(const std::vector<KeywordRow>& rows)
{
    KeywordsByParent byParent;
    for (const auto& row : rows)
        byParent[row.parentID].push_back(&row);
    return keywordLines(byParent, std::nullopt);
}

template <typename Row>
std::vector<SidebarNode> lines(Kind kind, const std::vector<Row>& rows)
{
    std::vector<SidebarNode> result;
    for (const auto& row : rows)
        result.push_back({kind, row.id, row.name, std::nullopt});
    return result;
}

/// Takes away the counts that may take long to be made.
void leaveOutCounts(std::vector<SidebarNode>& lines)
{
    for (auto& line : lines) {
        if (line.kind == Kind::all || line.kind == Kind::source || line.kind == Kind::project)
            line.count.reset();
        leaveOutCounts(line.children);
    }
}

} // namespace

std::vector<SidebarNode> sidebarTree(const LibraryTree& tree, PhotosCounted counted)
{
    auto albums = albumLines(tree.albums);
    auto projectsAndAlbums = projectLines(tree.projects, albums);
    for (auto& [parent, left] : albums) // at the root, and any whose project is gone
        std::move(left.begin(), left.end(), std::back_inserter(projectsAndAlbums));
    auto persons = lines(Kind::person, tree.people);
    for (std::size_t i = 0; i < persons.size(); ++i)
        persons[i].count = tree.people[i].count;
    std::vector<SidebarNode> all{heading(Heading::library, "Library", libraryLines(tree.totals)),
        heading(Heading::folders, "Folders", folderLines(tree.folders)),
        heading(Heading::projects, "Projects & Albums", std::move(projectsAndAlbums)),
        heading(Heading::smartAlbums, "Smart Albums", lines(Kind::smartAlbum, tree.smartAlbums)),
        heading(Heading::keywords, "Keywords", keywordLines(tree.keywords)),
        heading(Heading::people, "People", std::move(persons))};
    if (counted == PhotosCounted::notYet)
        leaveOutCounts(all);
    return all;
}

std::optional<std::optional<LibrarySource>> sourceOf(const SidebarKey& key)
{
    const auto of = [&](SourceKind source) { return std::optional(LibrarySource{source, key.id, {}}); };
    switch (key.kind) {
    case Kind::all:
        return std::optional<LibrarySource>();
    case Kind::source:
        return std::optional(LibrarySource{static_cast<SourceKind>(key.id), 0, {}});
    case Kind::folder:
        return of(SourceKind::folder);
    case Kind::project:
        return of(SourceKind::project);
    case Kind::album:
        return of(SourceKind::album);
    case Kind::smartAlbum:
        return of(SourceKind::smartAlbum);
    case Kind::person:
        return of(SourceKind::person);
    case Kind::heading:
    case Kind::keyword:
        return std::nullopt;
    }
    return std::nullopt;
}

SidebarKey keyOf(const std::optional<LibrarySource>& source)
{
    if (!source)
        return {Kind::all, 0};
    for (const auto kind : {Kind::folder, Kind::project, Kind::album, Kind::smartAlbum, Kind::person})
        if (sourceOf({kind, source->id}) == std::optional(source))
            return {kind, source->id};
    return {Kind::source, static_cast<std::int64_t>(source->kind)};
}

std::string lineText(const SidebarKey& key)
{
    const auto which = key.kind == Kind::heading ? std::string(nameOf(static_cast<Heading>(key.id)))
                                                 : std::to_string(key.id);
    return std::string(nameOf(key.kind)) + ":" + which;
}

std::optional<SidebarKey> parseLine(std::string_view text)
{
    const auto colon = std::min(text.find(':'), text.size());
    const auto kind = caseNamed<Kind>(text.substr(0, colon));
    const auto which = text.substr(std::min(colon + 1, text.size()));
    std::optional<std::int64_t> id;
    if (kind == Kind::heading)
        id = caseNamed<Heading>(which);
    else
        id = wholeNumber<std::int64_t>(which);
    return kind && id ? std::optional(SidebarKey{*kind, *id}) : std::nullopt;
}

bool canBeRenamed(Kind kind)
{
    return kind == Kind::project || kind == Kind::album || kind == Kind::smartAlbum || kind == Kind::keyword;
}

bool isOrdered(Kind kind)
{
    return kind == Kind::project || kind == Kind::album || kind == Kind::smartAlbum;
}

bool canBeDeleted(Kind kind)
{
    return canBeRenamed(kind) || kind == Kind::folder;
}

bool takesPhotos(const SidebarKey& key)
{
    return key.kind == Kind::album || key.kind == Kind::project || key.kind == Kind::keyword
        || key == SidebarKey{Kind::source, static_cast<std::int64_t>(SourceKind::flagged)};
}

bool canBeMoved(const SidebarKey& what, const SidebarKey& onto, DropAt at)
{
    if (what == onto)
        return false;
    if (at != DropAt::into)
        return isOrdered(what.kind) && onto.kind == what.kind;
    if (what.kind == Kind::keyword)
        return onto.kind == Kind::keyword || onto == SidebarKey{Kind::heading, Heading::keywords};
    return (what.kind == Kind::project || what.kind == Kind::album)
        && (onto.kind == Kind::project || onto == SidebarKey{Kind::heading, Heading::projects});
}

std::vector<SidebarNode> placesFor(const std::vector<SidebarNode>& tree, const SidebarKey& what)
{
    std::vector<SidebarNode> places;
    for (const auto& node : tree) {
        const SidebarKey key{node.kind, node.id};
        if (key == what) // nor into what lies in it
            continue;
        auto below = placesFor(node.children, what);
        if (canBeMoved(what, key))
            places.push_back({node.kind, node.id, node.name, std::nullopt, {}, std::move(below)});
    }
    return places;
}

} // namespace korvo
