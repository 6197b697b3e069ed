#include "catalog/MovedFolder.h"

#include "catalog/ChangeRow.h"

#include <algorithm>

namespace korvo {

namespace {

namespace fs = std::filesystem;

std::string pathOf(Database& database, std::int64_t folder)
{
    auto statement = database.kept("SELECT path FROM folders WHERE id = ?");
    statement.bind(folder);
    if (!statement.step())
        throw NotFoundError("folder", folder);
    return std::string(statement.text(0));
}

/// The paths in a folder lie between these: the character after the slash is the zero.
struct Inside {
    explicit Inside(const std::string& folder) : first(folder + "/"), end(folder + "0") { }

    std::string first, end;
};

void requireRoom(Database& database, const Inside& inside, std::string_view place)
{
    auto taken
        = database.kept("SELECT path FROM folders WHERE path = ?1 OR path IN "
                        "(SELECT ?1 || substr(path, length(?2)) FROM folders WHERE path >= ?2 AND path < ?3) "
                        "UNION ALL SELECT path FROM photos WHERE version_of IS NULL AND path IN "
                        "(SELECT ?1 || substr(path, length(?2)) FROM photos "
                        "WHERE version_of IS NULL AND path >= ?2 AND path < ?3)");
    taken.bind(place, inside.first, inside.end);
    if (taken.step())
        throw std::invalid_argument(std::string(taken.text(0))
            + " is in the library already: remove what was added from the folder's new place first");
}

/// The first hundred photos, by their paths in the folder.
std::vector<fs::path> photosIn(Database& database, const std::string& folder)
{
    const Inside inside(folder);
    auto statement = database.kept("SELECT substr(path, length(?1) + 1) FROM photos "
                                   "WHERE version_of IS NULL AND path >= ?1 AND path < ?2 LIMIT 100");
    statement.bind(inside.first, inside.end);
    std::vector<fs::path> photos;
    while (statement.step())
        photos.emplace_back(statement.text(0));
    return photos;
}

/// Whether one of them, or the only ones there are, is at its new place.
bool holdsPhotos(const std::vector<fs::path>& photos, const fs::path& place)
{
    std::error_code unreadable; // not found, then
    return photos.empty() || std::any_of(photos.begin(), photos.end(), [&](const fs::path& photo) {
        return fs::exists(place / photo, unreadable);
    });
}

} // namespace

void folderMoved(Database& database, std::int64_t id, std::string_view place)
{
    requireAbsolute(place);
    Transaction transaction(database);
    const auto before = pathOf(database, id);
    if (place == before)
        return;
    const Inside inside(before);
    requireRoom(database, inside, place);
    for (const std::string table : {"folders", "photos"})
        database.run("UPDATE " + table
                + " SET path = ?1 || substr(path, length(?2)) WHERE path = ?4 OR (path >= ?2 AND path < ?3)",
            place, inside.first, inside.end, before);
    transaction.commit();
}

FolderMove findFolder(Database& database, std::int64_t id, const fs::path& folder)
{
    const auto before = pathOf(database, id);
    std::error_code error;
    const auto place = fs::canonical(folder, error);
    if (error || !fs::is_directory(place, error))
        throw std::runtime_error(
            folder.string() + " is no folder" + (error ? ": " + error.message() : std::string()));
    if (!holdsPhotos(photosIn(database, before), place))
        throw std::runtime_error("none of the photos of " + before + " is in " + place.string());
    const Inside inside(before);
    const auto photos = database.scalar(
        "SELECT COUNT(*) FROM photos WHERE path >= ? AND path < ?", inside.first, inside.end);
    return {before, place.native(), static_cast<std::size_t>(photos)};
}

} // namespace korvo
