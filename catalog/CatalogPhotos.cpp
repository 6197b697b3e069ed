#include "catalog/ApertureImports.h"
#include "catalog/ChangeRow.h"
#include "catalog/MetadataBase.h"
#include "catalog/Stacks.h"

namespace korvo {

namespace {

/// Runs one statement for each photo, all of them in one transaction. `bind` is given the statement and an
/// id.
template <typename Bind>
void forEachID(Database& database, std::string_view sql, std::span<const PhotoID> ids, Bind bind)
{
    Transaction transaction(database);
    {
        auto statement = database.kept(sql);
        for (const PhotoID id : ids) {
            bind(statement, id);
            statement.run();
        }
    }
    transaction.commit();
}

std::optional<PhotoMetadata> metadataOf(Database& database, PhotoID id)
{
    auto row = database.kept(
        "SELECT alt_text, title, caption, keywords, creator, copyright FROM photos WHERE id = ?");
    row.bind(id);
    if (!row.step())
        return std::nullopt;
    return PhotoMetadata{row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5)};
}

bool mayBeWritten(Database& database, PhotoID id)
{
    auto row = database.kept("SELECT path FROM photos WHERE id = ?");
    row.bind(id);
    return row.step() && !isReadOnlyOriginal(database, row.text(0));
}

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
    forEachID(database_, "UPDATE photos SET rating = ? WHERE id = ?", ids,
        [&](Statement& statement, PhotoID id) { statement.bind(rating, id); });
}

void Catalog::setFlagged(std::span<const PhotoID> ids, bool flagged)
{
    forEachID(database_, "UPDATE photos SET flagged = ? WHERE id = ?", ids,
        [&](Statement& statement, PhotoID id) { statement.bind(flagged, id); });
}

void Catalog::setLabel(std::span<const PhotoID> ids, PhotoLabel label)
{
    forEachID(database_, "UPDATE photos SET label = ? WHERE id = ?", ids,
        [&](Statement& statement, PhotoID id) { statement.bind(static_cast<int>(label), id); });
}

void Catalog::saveEdits(std::span<const PhotoID> ids, const PhotoEdits& edits)
{
    const auto json = storedEdits(edits);
    forEachID(database_, "UPDATE photos SET edits = ? WHERE id = ?", ids,
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

void Catalog::setMetadata(PhotoID id, const PhotoMetadata& metadata, WriteBack writeBack)
{
    Transaction transaction(database_);
    const auto master = existingMasterOf(id);
    keepMetadataBase(database_, std::span(&master, 1));
    const bool waits = writeBack == WriteBack::pending && mayBeWritten(database_, master);
    database_.run(R"(UPDATE photos SET alt_text = ?, title = ?, caption = ?, keywords = ?,
    creator = ?, copyright = ?,
    dirty = CASE WHEN version_of IS NULL THEN ? ELSE 0 END
WHERE id = ? OR version_of = ?)",
        metadata.altText.view(), metadata.title.view(), metadata.caption.view(), metadata.keywords.view(),
        metadata.creator.view(), metadata.copyright.view(), waits, master, master);
    if (!waits)
        dropMetadataBase(database_, master);
    transaction.commit();
}

void Catalog::changeMetadata(std::span<const PhotoID> ids, const MetadataChange& change, WriteBack writeBack)
{
    Transaction transaction(database_);
    for (const PhotoID id : ids) {
        const auto old = metadataOf(database_, id);
        if (!old)
            continue;
        // What is the same already must not be written into the file.
        if (const auto changed = change.appliedTo(*old); !(changed == *old))
            setMetadata(id, changed, writeBack);
    }
    transaction.commit();
}

void Catalog::clearDirty(PhotoID id)
{
    Transaction transaction(database_);
    database_.run("UPDATE photos SET dirty = 0 WHERE id = ?", id);
    dropMetadataBase(database_, id);
    transaction.commit();
}

void Catalog::markDirty(std::span<const PhotoID> ids)
{
    std::vector<PhotoID> writable(ids.begin(), ids.end());
    std::erase_if(writable, [this](PhotoID id) { return !mayBeWritten(database_, id); });
    forEachID(database_, "UPDATE photos SET dirty = 1 WHERE id = ? AND version_of IS NULL", writable,
        [](Statement& statement, PhotoID id) { statement.bind(id); });
}

void Catalog::storeCameraData(PhotoID id, const CameraData& data)
{
    database_.run(
        R"(UPDATE photos SET camera = ?, lens = ?, iso = ?, focal_length = ?, aperture = ?, shutter = ?, exif_read = 1,
    capture_date = CASE WHEN capture_read = 1 THEN capture_date ELSE COALESCE(?, capture_date) END,
    capture_read = 1
WHERE id = ? OR version_of = ?)",
        data.camera, data.lens, data.iso, data.focalLength, data.aperture, data.shutter, data.captureDate, id,
        id);
}

void Catalog::storeReadPosition(PhotoID id, std::optional<double> latitude, std::optional<double> longitude)
{
    database_.run(R"(UPDATE photos SET latitude = CASE WHEN latitude IS NULL THEN ? ELSE latitude END,
    longitude = CASE WHEN latitude IS NULL THEN ? ELSE longitude END, gps_read = 1
WHERE (id = ? OR version_of = ?) AND gps_read = 0)",
        latitude, longitude, id, id);
}

void Catalog::shiftCaptureDate(PhotoID id, double seconds)
{
    database_.run(R"(UPDATE photos SET capture_date = COALESCE(capture_date, mtime, 0) + ?, capture_read = 1
WHERE id = ? OR version_of = ?)",
        seconds, id, id);
}

void Catalog::fileChanged(PhotoID id, UnixTime fileDate, std::int64_t fileSize)
{
    runAlone(database_, "UPDATE photos SET mtime = ?, file_size = ? WHERE id = ? OR version_of = ?", fileDate,
        fileSize, id, id);
}

void Catalog::deletePhotos(std::span<const PhotoID> ids)
{
    Transaction transaction(database_);
    const auto touched = stacksOf(database_, "SELECT stack_id FROM photos WHERE id = ?", ids);
    forEachID(database_, "DELETE FROM photos WHERE id = ?", ids,
        [](Statement& statement, PhotoID id) { statement.bind(id); });
    // The bases of their metadata stay: undo may bring back photos that wait, and no other gets their ids.
    repairStacks(database_, touched);
    transaction.commit();
}

std::vector<PhotoID> Catalog::dirtyPhotos()
{
    std::vector<PhotoID> ids;
    auto statement = database_.kept("SELECT id FROM photos WHERE dirty = 1 ORDER BY id");
    while (statement.step())
        ids.push_back(statement.integer(0));
    return ids;
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

} // namespace korvo
