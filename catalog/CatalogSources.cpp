#include "catalog/Catalog.h"

#include "catalog/FileTypes.h"
#include "catalog/GridOrder.h"
#include "catalog/LibraryReading.h"
#include "catalog/PhotoRows.h"

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;

constexpr auto masters = "SELECT p.* FROM photos p WHERE p.version_of IS NULL";
constexpr auto byName = " ORDER BY p.filename COLLATE NOCASE, p.id";

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

std::string isVideo()
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
        return isVideo();
    case Kind::faces:
        return " AND p.id IN (SELECT photo_id FROM faces)";
    case Kind::places:
        return " AND p.latitude IS NOT NULL AND p.longitude IS NOT NULL";
    default:
        return " AND 0"; // no extension contributes a source yet
    }
}

} // namespace

void Catalog::requireSource(const LibrarySource& source)
{
    struct Table {
        Kind kind;
        const char* noun;
        const char* count;
    };
    constexpr Table tables[] = {{Kind::folder, "folder", "SELECT COUNT(*) FROM folders WHERE id = ?"},
        {Kind::album, "album", "SELECT COUNT(*) FROM albums WHERE id = ?"},
        {Kind::smartAlbum, "smart album", "SELECT COUNT(*) FROM smart_albums WHERE id = ?"},
        {Kind::project, "project", "SELECT COUNT(*) FROM projects WHERE id = ?"},
        {Kind::person, "person", "SELECT COUNT(*) FROM people WHERE id = ?"},
        {Kind::versions, "photo", "SELECT COUNT(*) FROM photos WHERE id = ? AND version_of IS NULL"}};
    for (const auto& [kind, noun, count] : tables)
        if (kind == source.kind && database_.scalar(count, source.id) == 0)
            throw NotFoundError(noun, source.id);
}

ListedBy listedBy(const std::optional<LibrarySource>& source)
{
    const bool byHand = source && (source->kind == Kind::album || source->kind == Kind::recentlyAdded);
    return byHand ? ListedBy::hand : ListedBy::name;
}

namespace {

/// The photos of a source that are chosen by their own values; "?1" is the source's id.
std::string chosenOf(const std::optional<LibrarySource>& source)
{
    if (source && source->kind == Kind::versions)
        return masterAndVersions;
    return masters + (source ? conditionOf(source->kind) : std::string());
}

std::string listing(const std::optional<LibrarySource>& source, std::string_view orderByName)
{
    if (listedBy(source) == ListedBy::hand)
        return source->kind == Kind::album ? albumMembers : recentlyAdded;
    return chosenOf(source).append(orderByName);
}

using Use = std::function<bool(PhotoItem&&)>;

void forEachPhotoIn(Database& database, const std::optional<LibrarySource>& source,
    std::string_view orderByName, const Use& use)
{
    if (source && source->kind == Kind::smartAlbum) {
        auto matcher = smartAlbumMatcher(database, source->id);
        return forEachPhotoIn(database, std::nullopt, orderByName,
            [&](PhotoItem&& item) { return !matcher.matches(item) || use(std::move(item)); });
    }
    const auto sql = listing(source, orderByName);
    auto statement = database.prepare(sql);
    if (sql.find("?1") != sql.npos)
        statement.bind(source->id);
    PhotoRows rows(statement);
    while (statement.step() && use(rows.item())) { }
}

} // namespace

void Catalog::forEachPhoto(const std::optional<LibrarySource>& source, const Use& use)
{
    forEachPhotoIn(database_, source, byName, use);
}

std::vector<PhotoItem> photosIn(
    Database& database, const std::optional<LibrarySource>& source, const std::stop_token& stop)
{
    std::vector<PhotoItem> items;
    // Put in order later: SQLite would write each row several times for it.
    forEachPhotoIn(database, source, "", [&](PhotoItem&& item) {
        items.push_back(std::move(item));
        return !stop.stop_requested();
    });
    return items;
}

std::vector<PhotoItem> Catalog::photos(const std::optional<LibrarySource>& source)
{
    auto items = photosIn(database_, source);
    putInOrder(items, listed(items, listedBy(source)));
    return items;
}

std::vector<PhotoItem> Catalog::photosByID(std::span<const PhotoID> ids)
{
    std::vector<PhotoItem> items;
    items.reserve(ids.size());
    auto statement = database_.kept("SELECT * FROM photos WHERE id = ?");
    PhotoRows rows(statement);
    for (const PhotoID id : ids) {
        statement.bind(id);
        if (statement.step())
            items.push_back(rows.item());
    }
    return items;
}

std::vector<PhotoItem> Catalog::photosOfSource(
    const std::optional<LibrarySource>& source, std::span<const PhotoID> ids)
{
    if (listedBy(source) == ListedBy::hand)
        return photosByID(ids);
    if (source && source->kind == Kind::smartAlbum) {
        auto matcher = smartAlbumMatcher(database_, source->id);
        auto items = photosOfSource(std::nullopt, ids);
        std::erase_if(items, [&](const PhotoItem& item) { return !matcher.matches(item); });
        return items;
    }
    const bool inProject = source && source->kind == Kind::project;
    const auto chosen
        = inProject ? masters + (" AND ?1 IN (" + std::string(idsAbove) + ")") : chosenOf(source);
    auto statement = database_.prepare(chosen + " AND p.id = ?2");
    PhotoRows rows(statement);
    std::vector<PhotoItem> items;
    for (const PhotoID id : ids) {
        statement.bind(source ? source->id : 0, id);
        if (statement.step())
            items.push_back(rows.item());
    }
    return items;
}

std::optional<PhotoItem> Catalog::photo(PhotoID id)
{
    auto items = photosByID(std::span(&id, 1));
    return items.empty() ? std::nullopt : std::optional(std::move(items.front()));
}

} // namespace korvo
