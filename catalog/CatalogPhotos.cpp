#include "catalog/ChangeRow.h"
#include "catalog/Stacks.h"

#include <unordered_set>

namespace korvo {

namespace {

constexpr std::string_view insertPhoto = R"(INSERT OR IGNORE INTO photos
    (folder_id, path, filename, added_at, mtime, file_size,
     alt_text, title, caption, keywords, creator, copyright,
     camera, lens, iso, focal_length, aperture, shutter, capture_date, latitude, longitude,
     exif_read, capture_read, gps_read,
     project_id, version_of, version_name, rating, flagged, label, edits, reference_path)
VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?))";

AddedRow addTo(Catalog& catalog, Statement& insert, const NewPhoto& photo)
{
    const std::string_view path = photo.path;
    requireAbsolute(path);
    const PhotoMetadata& metadata = photo.metadata;
    const CameraData& camera = photo.camera;
    insert.bind(photo.folderID, path, path.substr(path.rfind('/') + 1), photo.addedAt, photo.fileDate,
        photo.fileSize, metadata.altText.view(), metadata.title.view(), metadata.caption.view(),
        metadata.keywords.view(), metadata.creator.view(), metadata.copyright.view(), camera.camera,
        camera.lens, camera.iso, camera.focalLength, camera.aperture, camera.shutter, camera.captureDate,
        photo.latitude, photo.longitude, photo.read.camera, photo.read.captureDate, photo.read.position,
        photo.projectID, photo.versionOf, photo.versionName, photo.rating, photo.flagged,
        static_cast<int>(photo.label), photo.edits, photo.referencePath);
    insert.run();
    if (catalog.database().changes() > 0)
        return {sqlite3_last_insert_rowid(catalog.database().handle()), true};
    return {catalog.masterAt(path).value_or(0), false};
}

} // namespace

AddedRow Catalog::addPhoto(const NewPhoto& photo)
{
    auto insert = database_.kept(insertPhoto);
    return addTo(*this, insert, photo);
}

std::vector<AddedRow> Catalog::addPhotos(std::span<const NewPhoto> photos)
{
    std::vector<AddedRow> added;
    added.reserve(photos.size());
    Transaction transaction(database_);
    {
        auto insert = database_.kept(insertPhoto);
        for (const NewPhoto& photo : photos)
            added.push_back(addTo(*this, insert, photo));
    }
    transaction.commit();
    return added;
}

void Catalog::setRating(std::span<const PhotoID> ids, int rating)
{
    changeEach(database_, "UPDATE photos SET rating = ? WHERE id = ?", ids,
        [&](Statement& statement, PhotoID id) { statement.bind(rating, id); });
}

void Catalog::setFlagged(std::span<const PhotoID> ids, bool flagged)
{
    changeEach(database_, "UPDATE photos SET flagged = ? WHERE id = ?", ids,
        [&](Statement& statement, PhotoID id) { statement.bind(flagged, id); });
}

void Catalog::setLabel(std::span<const PhotoID> ids, PhotoLabel label)
{
    changeEach(database_, "UPDATE photos SET label = ? WHERE id = ?", ids,
        [&](Statement& statement, PhotoID id) { statement.bind(static_cast<int>(label), id); });
}

void Catalog::saveEdits(std::span<const PhotoID> ids, const PhotoEdits& edits)
{
    const auto json = storedEdits(edits);
    changeEach(database_, "UPDATE photos SET edits = ? WHERE id = ?", ids,
        [&](Statement& statement, PhotoID id) { statement.bind(json, id); });
}

void Catalog::saveComposition(PhotoID id, std::string_view json)
{
    changeRow(database_, "photo", id, "UPDATE photos SET meme = ? WHERE id = ?", json, id);
}

void Catalog::setReferencePath(PhotoID id, std::string_view path)
{
    changeRow(database_, "photo", id, "UPDATE photos SET reference_path = ? WHERE id = ?", path, id);
}

void Catalog::deletePhotos(std::span<const PhotoID> ids)
{
    Transaction transaction(database_);
    const auto touched = stacksOf(database_, "SELECT stack_id FROM photos WHERE id = ?", ids);
    changeEach(database_, "DELETE FROM photos WHERE id = ?", ids,
        [](Statement& statement, PhotoID id) { statement.bind(id); });
    // The bases of their metadata stay: undo may bring back photos that wait, and no other gets their ids.
    repairStacks(database_, touched);
    transaction.commit();
}

bool Catalog::contains(PhotoID id)
{
    return database_.scalar("SELECT COUNT(*) FROM photos WHERE id = ?", id) > 0;
}

std::optional<PhotoID> Catalog::masterAt(std::string_view path)
{
    const auto id = database_.scalar("SELECT id FROM photos WHERE path = ? AND version_of IS NULL", path);
    return id != 0 ? std::optional(id) : std::nullopt;
}

bool Catalog::isOriginal(const std::filesystem::path& file)
{
    if (masterAt(file.native()))
        return true;
    std::error_code absent; // then it is nobody's
    const auto size = std::filesystem::file_size(file, absent);
    if (absent)
        return false;
    // By another name, as links and file systems without case have them: the disk is asked of those few that
    // are as long.
    auto row = database_.kept("SELECT path FROM photos WHERE file_size = ? AND version_of IS NULL");
    row.bind(static_cast<std::int64_t>(size));
    while (row.step())
        if (std::filesystem::equivalent(file, row.text(0), absent))
            return true;
    return false;
}

std::vector<std::pair<std::string, std::int64_t>> Catalog::knownFiles() const
{
    std::vector<std::pair<std::string, std::int64_t>> files;
    auto database = lookingConnection();
    auto statement = database.prepare("SELECT filename, file_size FROM photos WHERE version_of IS NULL");
    while (statement.step())
        files.emplace_back(statement.text(0), statement.integer(1));
    return files;
}

std::vector<PhotoID> Catalog::withVersions(std::span<const PhotoID> masters)
{
    std::vector<PhotoID> all(masters.begin(), masters.end());
    auto statement = database_.kept("SELECT id FROM photos WHERE version_of = ?");
    for (const PhotoID master : masters) {
        statement.bind(master);
        while (statement.step())
            all.push_back(statement.integer(0));
    }
    return all;
}

PhotoID Catalog::masterOf(PhotoID id)
{
    return database_.scalar("SELECT COALESCE(version_of, id) FROM photos WHERE id = ?", id);
}

PhotoID Catalog::existingMasterOf(PhotoID id)
{
    const auto master = masterOf(id);
    if (master == 0)
        throw NotFoundError("photo", id);
    return master;
}

std::vector<PhotoID> Catalog::mastersOf(std::span<const PhotoID> photos)
{
    std::vector<PhotoID> masters;
    std::unordered_set<PhotoID> seen;
    for (const PhotoID photo : photos) {
        const auto master = masterOf(photo);
        if (master != 0 && seen.insert(master).second)
            masters.push_back(master);
    }
    return masters;
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
