#include "catalog/SourceQuery.h"

#include "catalog/FileTypes.h"

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;

constexpr auto masters = "SELECT p.* FROM photos p WHERE p.version_of IS NULL";

constexpr auto albumMembers = "SELECT p.* FROM photos p JOIN album_items ai ON ai.photo_id = p.id "
                              "WHERE ai.album_id = ?1 ORDER BY ai.position, p.filename COLLATE NOCASE";

constexpr auto masterAndVersions = "SELECT p.* FROM photos p WHERE (p.id = ?1 OR p.version_of = ?1)";

constexpr auto recentlyAdded
    = "SELECT p.* FROM photos p WHERE p.version_of IS NULL ORDER BY p.added_at DESC, p.id DESC LIMIT 200";

// UNION passes over what was there already, so that projects that lie in each other in a circle end it.
constexpr std::string_view idsBelow
    = "WITH RECURSIVE below(id) AS (VALUES (?1) UNION SELECT projects.id FROM projects "
      "JOIN below ON projects.parent_id = below.id) SELECT id FROM below";

/// The other way round, from a photo's own project: a few steps, however many projects there are.
constexpr std::string_view idsAbove
    = "WITH RECURSIVE above(id) AS (VALUES (p.project_id) UNION SELECT parent_id FROM projects "
      "JOIN above USING (id)) SELECT id FROM above";

std::string videosOnly()
{
    std::string tests;
    for (const auto extension : videoExtensions)
        tests
            += (tests.empty() ? "" : " OR ") + ("lower(p.filename) LIKE '%." + std::string(extension)) + "'";
    return " AND (" + tests + ")";
}

/// The condition of a source that is one; "?1" is the source's id.
std::string conditionOf(Kind kind)
{
    switch (kind) {
    case Kind::project:
        return " AND p.project_id IN (" + std::string(idsBelow) + ")";
    case Kind::folder:
        return " AND p.folder_id = ?1";
    case Kind::person:
        return " AND p.id IN (SELECT photo_id FROM faces WHERE person_id = ?1)";
    case Kind::noAltText:
        return " AND p.alt_text = ''";
    case Kind::flagged:
        return " AND p.flagged = 1";
    case Kind::videos:
        return videosOnly();
    case Kind::faces:
        return " AND p.id IN (SELECT photo_id FROM faces)";
    case Kind::places:
        return " AND p.latitude IS NOT NULL AND p.longitude IS NOT NULL";
    default:
        return " AND 0"; // no extension contributes a source yet
    }
}

/// The photos of a source that are chosen by their own values; "?1" is the source's id.
std::string chosenOf(const std::optional<LibrarySource>& source)
{
    if (source && source->kind == Kind::versions)
        return masterAndVersions;
    return masters + (source ? conditionOf(source->kind) : std::string());
}

} // namespace

ListedBy listedBy(const std::optional<LibrarySource>& source)
{
    const bool byHand = source && (source->kind == Kind::album || source->kind == Kind::recentlyAdded);
    return byHand ? ListedBy::hand : ListedBy::name;
}

std::string queryOf(const std::optional<LibrarySource>& source, std::string_view orderByName)
{
    if (listedBy(source) == ListedBy::hand)
        return source->kind == Kind::album ? albumMembers : recentlyAdded;
    return chosenOf(source).append(orderByName);
}

std::string queryOfOne(const std::optional<LibrarySource>& source)
{
    const bool inProject = source && source->kind == Kind::project;
    const auto chosen
        = inProject ? masters + (" AND ?1 IN (" + std::string(idsAbove) + ")") : chosenOf(source);
    return chosen + " AND p.id = ?2";
}

} // namespace korvo
