#include "catalog/ChangeRow.h"
#include "catalog/LibraryReading.h"
#include "catalog/NewGroups.h"
#include "catalog/Stacks.h"

#include <map>

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

/// Throws NotFoundError when a row that another is about to refer to does not exist.
void requireProject(Database& database, std::optional<std::int64_t> id)
{
    if (id && database.scalar("SELECT COUNT(*) FROM projects WHERE id = ?", *id) == 0)
        throw NotFoundError("project", *id);
}

void requireKeyword(Database& database, std::optional<std::int64_t> id)
{
    if (id && database.scalar("SELECT COUNT(*) FROM keywords WHERE id = ?", *id) == 0)
        throw NotFoundError("keyword", *id);
}

void requireAlbum(Database& database, std::int64_t id)
{
    if (database.scalar("SELECT COUNT(*) FROM albums WHERE id = ?", id) == 0)
        throw NotFoundError("album", id);
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
        "SELECT a.id, a.name, a.parent_id, (SELECT COUNT(*) FROM album_items ai WHERE ai.album_id = a.id) AS "
        "n "
        "FROM albums a ORDER BY a.position, a.name COLLATE NOCASE",
        [](const Statement& row) {
            return AlbumRow{row.integer(0), text(row, 1), row.optionalInteger(2), row.integer(3)};
        });
}

std::vector<KeywordRow> keywordsIn(Database& database)
{
    return rowsOf(database, "SELECT id, name, parent_id FROM keywords ORDER BY name COLLATE NOCASE",
        [](const Statement& row) {
            return KeywordRow{row.integer(0), text(row, 1), row.optionalInteger(2)};
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

LibraryTree Catalog::tree()
{
    return treeIn(database_, countsIn(database_));
}

std::vector<KeywordRow> Catalog::keywords()
{
    return keywordsIn(database_);
}

AddedRow Catalog::addFolder(std::string_view path, UnixTime addedAt)
{
    requireAbsolute(path);
    Transaction transaction(database_);
    database_.run("INSERT OR IGNORE INTO folders (path, added_at) VALUES (?, ?)", path, addedAt);
    const bool isNew = database_.changes() > 0;
    const auto id = database_.scalar("SELECT id FROM folders WHERE path = ?", path);
    transaction.commit();
    return {id, isNew};
}

std::optional<std::int64_t> Catalog::folderContaining(std::string_view path)
{
    auto statement = database_.kept("SELECT id FROM folders WHERE substr(?1, 1, length(path) + 1) = path || "
                                    "'/' ORDER BY length(path) DESC LIMIT 1");
    statement.bind(path);
    return statement.step() ? std::optional(statement.integer(0)) : std::nullopt;
}

void Catalog::removeFolder(std::int64_t id)
{
    Transaction transaction(database_);
    const auto touched
        = stacksOf(database_, "SELECT DISTINCT stack_id FROM photos WHERE folder_id = ?", std::span(&id, 1));
    changeRow(database_, "folder", id, "DELETE FROM folders WHERE id = ?", id);
    repairStacks(database_, touched);
    transaction.commit();
}

std::int64_t Catalog::createProject(
    std::string_view name, std::string_view kind, std::optional<std::int64_t> parent)
{
    const NewProject project{std::string(name), std::string(kind), parent};
    return createProjects(database_, std::span(&project, 1)).front();
}

std::vector<std::int64_t> createProjects(Database& database, std::span<const NewProject> projects)
{
    std::vector<std::int64_t> ids;
    std::map<std::optional<std::int64_t>, std::int64_t> positions; // the next one below each parent
    Transaction transaction(database);
    for (const auto& [name, kind, parent] : projects) {
        requireName(name);
        const auto [position, isNew] = positions.try_emplace(parent, 0);
        if (isNew) {
            requireProject(database, parent);
            position->second = database.scalar(
                "SELECT COALESCE(MAX(position), 0) + 1 FROM projects WHERE parent_id IS ?", parent);
        }
        ids.push_back(
            database.insert("INSERT INTO projects (name, kind, parent_id, position) VALUES (?, ?, ?, ?)",
                name, kind, parent, position->second++));
    }
    transaction.commit();
    return ids;
}

std::int64_t Catalog::gatherUnderProject(std::string_view name)
{
    Transaction transaction(database_);
    const auto id = createProject(name, "folder", std::nullopt);
    database_.run("UPDATE projects SET parent_id = ? WHERE parent_id IS NULL AND id != ?", id, id);
    database_.run("UPDATE albums SET parent_id = ? WHERE parent_id IS NULL", id);
    transaction.commit();
    return id;
}

void Catalog::renameProject(std::int64_t id, std::string_view name)
{
    requireName(name);
    changeRow(database_, "project", id, "UPDATE projects SET name = ? WHERE id = ?", name, id);
}

void Catalog::moveProject(std::int64_t id, std::optional<std::int64_t> parent)
{
    Transaction transaction(database_);
    requireProject(database_, parent);
    constexpr auto isAbove = "WITH RECURSIVE above(id) AS (VALUES (?1) UNION SELECT parent_id FROM projects "
                             "JOIN above USING (id)) SELECT COUNT(*) FROM above WHERE id = ?2";
    if (parent && database_.scalar(isAbove, *parent, id) > 0)
        throw std::invalid_argument("a project cannot be put into itself");
    changeRow(database_, "project", id, "UPDATE projects SET parent_id = ? WHERE id = ?", parent, id);
    transaction.commit();
}

void Catalog::deleteProject(std::int64_t id)
{
    changeRow(database_, "project", id, "DELETE FROM projects WHERE id = ?", id);
}

void Catalog::assignToProject(std::span<const PhotoID> ids, std::optional<std::int64_t> project)
{
    Transaction transaction(database_);
    requireProject(database_, project);
    for (const PhotoID id : mastersOf(ids))
        database_.run("UPDATE photos SET project_id = ? WHERE id = ? OR version_of = ?", project, id, id);
    transaction.commit();
}

std::int64_t Catalog::createAlbum(std::string_view name, std::optional<std::int64_t> parentProject)
{
    const NewAlbum album{std::string(name), parentProject};
    return createAlbums(database_, std::span(&album, 1)).front();
}

std::vector<std::int64_t> createAlbums(Database& database, std::span<const NewAlbum> albums)
{
    std::vector<std::int64_t> ids;
    Transaction transaction(database);
    auto position = database.scalar("SELECT COALESCE(MAX(position), 0) + 1 FROM albums");
    for (const auto& [name, parentProject] : albums) {
        requireName(name);
        requireProject(database, parentProject);
        ids.push_back(database.insert("INSERT INTO albums (name, position, parent_id) VALUES (?, ?, ?)", name,
            position++, parentProject));
    }
    transaction.commit();
    return ids;
}

void Catalog::renameAlbum(std::int64_t id, std::string_view name)
{
    requireName(name);
    changeRow(database_, "album", id, "UPDATE albums SET name = ? WHERE id = ?", name, id);
}

void Catalog::moveAlbum(std::int64_t id, std::optional<std::int64_t> parentProject)
{
    Transaction transaction(database_);
    requireProject(database_, parentProject);
    changeRow(database_, "album", id, "UPDATE albums SET parent_id = ? WHERE id = ?", parentProject, id);
    transaction.commit();
}

void Catalog::deleteAlbum(std::int64_t id)
{
    changeRow(database_, "album", id, "DELETE FROM albums WHERE id = ?", id);
}

void Catalog::addToAlbum(std::int64_t album, std::span<const PhotoID> photos)
{
    Transaction transaction(database_);
    requireAlbum(database_, album);
    auto position
        = database_.scalar("SELECT COALESCE(MAX(position), 0) FROM album_items WHERE album_id = ?", album);
    for (const PhotoID photo : photos)
        database_.run("INSERT OR IGNORE INTO album_items (album_id, photo_id, position) VALUES (?, ?, ?)",
            album, photo, ++position);
    transaction.commit();
}

void Catalog::removeFromAlbum(std::int64_t album, std::span<const PhotoID> photos)
{
    Transaction transaction(database_);
    requireAlbum(database_, album);
    for (const PhotoID photo : photos)
        database_.run("DELETE FROM album_items WHERE album_id = ? AND photo_id = ?", album, photo);
    transaction.commit();
}

std::int64_t Catalog::createKeyword(std::string_view name, std::optional<std::int64_t> parent)
{
    requireName(name);
    Transaction transaction(database_);
    requireKeyword(database_, parent);
    const auto id = database_.insert("INSERT INTO keywords (name, parent_id) VALUES (?, ?)", name, parent);
    transaction.commit();
    return id;
}

void Catalog::deleteKeyword(std::int64_t id)
{
    changeRow(database_, "keyword", id, "DELETE FROM keywords WHERE id = ?", id);
}

std::int64_t Catalog::createSmartAlbum(std::string_view name, std::string_view rules)
{
    requireName(name);
    return database_.insert("INSERT INTO smart_albums (name, rules) VALUES (?, ?)", name, rules);
}

void Catalog::changeSmartAlbum(std::int64_t id, std::string_view name, std::string_view rules)
{
    requireName(name);
    changeRow(database_, "smart album", id, "UPDATE smart_albums SET name = ?, rules = ? WHERE id = ?", name,
        rules, id);
}

void Catalog::deleteSmartAlbum(std::int64_t id)
{
    changeRow(database_, "smart album", id, "DELETE FROM smart_albums WHERE id = ?", id);
}

AddedRow Catalog::projectAtRoot(std::string_view name)
{
    Transaction transaction(database_);
    auto id = database_.scalar(
        "SELECT id FROM projects WHERE parent_id IS NULL AND name = ? ORDER BY id LIMIT 1", name);
    const bool isNew = id == 0;
    if (isNew)
        id = createProject(name, "project", std::nullopt);
    transaction.commit();
    return {id, isNew};
}

void Catalog::takeOut(const AddedRows& added)
{
    Transaction transaction(database_);
    deletePhotos(added.photos);
    for (const auto folder : added.folders)
        database_.run("DELETE FROM folders WHERE id = ?1 AND NOT EXISTS "
                      "(SELECT 1 FROM photos WHERE folder_id = ?1)",
            folder);
    for (const auto project : added.projects)
        database_.run(R"(DELETE FROM projects WHERE id = ?1
    AND NOT EXISTS (SELECT 1 FROM photos WHERE project_id = ?1)
    AND NOT EXISTS (SELECT 1 FROM projects WHERE parent_id = ?1)
    AND NOT EXISTS (SELECT 1 FROM albums WHERE parent_id = ?1))",
            project);
    transaction.commit();
}

} // namespace korvo
