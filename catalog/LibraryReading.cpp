#include "catalog/LibraryReading.h"

#include "base/JsonError.h"
#include "catalog/CatalogErrors.h"
#include "catalog/PhotoRows.h"
#include "catalog/SourceQuery.h"
#include "catalog/sql/Database.h"

namespace korvo {

namespace {

/// All rows of a statement, each made by `make`.
template <typename Make>
auto rowsOf(Database& database, std::string_view sql, Make make)
{
    std::vector<decltype(make(std::declval<Statement&>()))> rows;
    auto statement = database.kept(sql);
    while (statement.step())
        rows.push_back(make(statement));
    return rows;
}

std::string text(const Statement& row, int column)
{
    return std::string(row.text(column));
}

std::vector<ProjectRow> projects(Database& database)
{
    return rowsOf(database,
        "SELECT id, name, kind, parent_id, position FROM projects ORDER BY position, name COLLATE NOCASE",
        [](const Statement& row) {
            return ProjectRow{
                row.integer(0), text(row, 1), text(row, 2), row.optionalInteger(3), row.integer(4)};
        });
}

std::vector<AlbumRow> albums(Database& database)
{
    return rowsOf(database,
        R"(SELECT a.id, a.name, a.parent_id, (SELECT COUNT(*) FROM album_items ai WHERE ai.album_id = a.id)
FROM albums a ORDER BY a.position, a.name COLLATE NOCASE)",
        [](const Statement& row) {
            return AlbumRow{row.integer(0), text(row, 1), row.optionalInteger(2), row.integer(3)};
        });
}

std::unordered_map<PhotoID, std::int64_t> versionCounts(Database& database)
{
    std::unordered_map<PhotoID, std::int64_t> counts;
    auto statement = database.kept("SELECT version_of AS m, COUNT(*) AS n FROM photos "
                                   "WHERE version_of IS NOT NULL GROUP BY version_of");
    while (statement.step())
        counts.emplace(statement.integer(0), statement.integer(1));
    return counts;
}

} // namespace

void forEachPhoto(Database& database, const std::optional<LibrarySource>& source,
    std::string_view orderByName, const PhotoUse& use)
{
    if (source && source->kind == LibrarySource::Kind::smartAlbum) {
        auto matcher = smartAlbumMatcher(database, source->id);
        return forEachPhoto(database, std::nullopt, orderByName,
            [&](PhotoItem&& item) { return !matcher.matches(item) || use(std::move(item)); });
    }
    const auto sql = queryOf(source, orderByName);
    auto statement = database.prepare(sql);
    if (sql.find("?1") != sql.npos)
        statement.bind(source->id);
    PhotoRows rows(statement);
    while (statement.step() && use(rows.item())) { }
}

std::vector<PhotoItem> photosIn(
    Database& database, const std::optional<LibrarySource>& source, const std::stop_token& stop)
{
    std::vector<PhotoItem> items;
    // Put in order later: SQLite would write each row several times for it.
    forEachPhoto(database, source, "", [&](PhotoItem&& item) {
        items.push_back(std::move(item));
        return !stop.stop_requested();
    });
    return items;
}

SmartAlbumRow smartAlbumIn(Database& database, std::int64_t id)
{
    auto statement = database.kept("SELECT name, rules FROM smart_albums WHERE id = ?");
    statement.bind(id);
    if (!statement.step())
        throw NotFoundError("smart album", id);
    return {id, std::string(statement.text(0)), std::string(statement.text(1))};
}

SmartAlbumMatcher smartAlbumMatcher(Database& database, std::int64_t id)
{
    const auto album = smartAlbumIn(database, id);
    try {
        return SmartAlbumMatcher(smartAlbumRules(album.rules));
    } catch (const JsonError& error) {
        throw SmartAlbumError(album.name, error.what());
    }
}

LibraryCounts countsIn(Database& database)
{
    const LibraryTotals totals{database.scalar("SELECT COUNT(*) FROM photos"),
        database.scalar("SELECT COUNT(*) FROM photos WHERE alt_text = ''"),
        database.scalar("SELECT COUNT(*) FROM photos WHERE dirty = 1"),
        database.scalar("SELECT COUNT(*) FROM photos WHERE version_of IS NULL AND project_id IS NULL"),
        database.scalar("SELECT COUNT(*) FROM photos WHERE version_of IS NULL"),
        database.scalar("SELECT COUNT(*) FROM photos WHERE version_of IS NULL AND alt_text = ''")};
    return {totals,
        rowsOf(database,
            "SELECT project_id, COUNT(*) AS n FROM photos WHERE version_of IS NULL AND project_id IS NOT "
            "NULL GROUP BY project_id",
            [](const Statement& row) { return std::pair(row.integer(0), row.integer(1)); }),
        versionCounts(database)};
}

std::vector<KeywordRow> keywordsIn(Database& database)
{
    return rowsOf(database, "SELECT id, name, parent_id FROM keywords ORDER BY name COLLATE NOCASE",
        [](const Statement& row) {
            return KeywordRow{row.integer(0), text(row, 1), row.optionalInteger(2)};
        });
}

LibraryTree treeIn(Database& database, const LibraryCounts& counts)
{
    LibraryTree tree;
    tree.folders = rowsOf(database, "SELECT id, path FROM folders ORDER BY path", [](const Statement& row) {
        return FolderRow{row.integer(0), text(row, 1)};
    });
    tree.projects = projectTree(projects(database), counts.inProjects);
    tree.albums = albums(database);
    tree.smartAlbums
        = rowsOf(database, "SELECT id, name, rules FROM smart_albums ORDER BY position, name COLLATE NOCASE",
            [](const Statement& row) {
                return SmartAlbumRow{row.integer(0), text(row, 1), text(row, 2)};
            });
    tree.keywords = keywordsIn(database);
    tree.people = rowsOf(database,
        "SELECT pe.id, pe.name, (SELECT COUNT(DISTINCT f.photo_id) FROM faces f WHERE f.person_id = pe.id) "
        "FROM people pe ORDER BY pe.position, pe.name COLLATE NOCASE",
        [](const Statement& row) {
            return PersonRow{row.integer(0), text(row, 1), row.integer(2)};
        });
    tree.totals = counts.totals;
    return tree;
}

} // namespace korvo
