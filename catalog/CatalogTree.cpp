#include "catalog/ChangeRow.h"
#include "catalog/LibraryReading.h"
#include "catalog/NewGroups.h"
#include "catalog/Stacks.h"

namespace korvo {

namespace {

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

} // namespace

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
    auto statement = database_.kept(R"(SELECT id FROM folders
WHERE substr(?1, 1, length(path) + 1) = path || '/' ORDER BY length(path) DESC LIMIT 1)");
    statement.bind(path);
    return statement.step() ? std::optional(statement.integer(0)) : std::nullopt;
}

std::int64_t Catalog::photosInFolder(std::int64_t id)
{
    return database_.scalar("SELECT COUNT(*) FROM photos WHERE folder_id = ? AND version_of IS NULL", id);
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

void Catalog::fileRenamed(PhotoID id, const std::filesystem::path& path)
{
    requireAbsolute(path.native());
    changeRow(database_, "photo", id,
        "UPDATE photos SET path = ?1, filename = ?2 WHERE id = ?3 OR version_of = ?3", path.native(),
        path.filename().native(), id);
}

std::int64_t Catalog::createProject(
    std::string_view name, std::string_view kind, std::optional<std::int64_t> parent)
{
    const NewProject project{std::string(name), std::string(kind), parent};
    return createProjects(database_, std::span(&project, 1)).front();
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

} // namespace korvo
