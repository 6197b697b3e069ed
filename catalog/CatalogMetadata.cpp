// What the files hold and what the catalog holds, kept in step.

#include "catalog/ApertureImports.h"
#include "catalog/ChangeRow.h"
#include "catalog/MetadataBase.h"
#include "catalog/PhotoRows.h"

namespace korvo {

namespace {

/// On a connection of its own: where few photos or none are waiting, the whole table is looked through, and
/// everybody else would stand still meanwhile.
std::vector<std::pair<PhotoID, std::string>> idsAndPaths(
    const Catalog& catalog, std::string_view sql, PhotoID after, std::int64_t limit)
{
    std::vector<std::pair<PhotoID, std::string>> photos;
    auto database = catalog.lookingConnection();
    auto statement = database.prepare(sql);
    statement.bind(after, limit);
    while (statement.step())
        photos.emplace_back(statement.integer(0), statement.text(1));
    return photos;
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

} // namespace

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
    changeEach(database_, "UPDATE photos SET dirty = 1 WHERE id = ? AND version_of IS NULL", writable,
        [](Statement& statement, PhotoID id) { statement.bind(id); });
}

std::vector<PhotoID> Catalog::dirtyPhotos()
{
    std::vector<PhotoID> ids;
    auto statement = database_.kept("SELECT id FROM photos WHERE dirty = 1 ORDER BY id");
    while (statement.step())
        ids.push_back(statement.integer(0));
    return ids;
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

std::vector<std::pair<PhotoID, std::string>> Catalog::photosToRead(std::int64_t limit, PhotoID after)
{
    return idsAndPaths(*this,
        R"(SELECT id, path FROM photos
WHERE id > ? AND version_of IS NULL AND (exif_read = 0 OR capture_read = 0) ORDER BY id LIMIT ?)",
        after, limit);
}

std::vector<std::pair<PhotoID, std::string>> Catalog::photosToLocate(std::int64_t limit, PhotoID after)
{
    return idsAndPaths(*this,
        R"(SELECT id, path FROM photos
WHERE id > ? AND version_of IS NULL AND gps_read = 0 ORDER BY id LIMIT ?)",
        after, limit);
}

bool Catalog::isCaptureDateRead(PhotoID id)
{
    return database_.scalar("SELECT capture_read FROM photos WHERE id = ?", id) != 0;
}

bool Catalog::isPositionRead(PhotoID id)
{
    return database_.scalar("SELECT gps_read FROM photos WHERE id = ?", id) != 0;
}

void Catalog::setUserPosition(PhotoID id, std::optional<double> latitude, std::optional<double> longitude)
{
    runAlone(database_,
        "UPDATE photos SET latitude = ?, longitude = ?, gps_read = 1 WHERE id = ? OR version_of = ?",
        latitude, longitude, id, id);
}

std::int64_t Catalog::dirtyCount()
{
    return database_.scalar("SELECT COUNT(*) FROM photos WHERE dirty = 1");
}

bool Catalog::anyDirty(std::span<const PhotoID> ids)
{
    auto statement = database_.kept("SELECT 1 FROM photos WHERE id = ? AND dirty = 1");
    for (const PhotoID id : ids) {
        statement.bind(id);
        if (statement.step())
            return true;
    }
    return false;
}

std::optional<FileRecord> Catalog::fileRecord(PhotoID id)
{
    auto statement = database_.kept("SELECT * FROM photos WHERE id = ? AND version_of IS NULL");
    statement.bind(id);
    if (!statement.step())
        return std::nullopt;
    auto item = PhotoRows(statement).item();
    return FileRecord{item.id, item.path(), item.fileDate,
        statement.optionalInteger(statement.column("file_size")), item.dirty,
        std::string(statement.text(statement.column("metadata_backup"))), std::move(item.metadata),
        item.dirty ? metadataBase(database_, id) : std::nullopt};
}

void Catalog::storeMetadataBackup(PhotoID id, std::string_view backup)
{
    runAlone(
        database_, "UPDATE photos SET metadata_backup = ? WHERE id = ? AND metadata_backup = ''", backup, id);
}

void Catalog::metadataWritten(
    PhotoID id, const PhotoMetadata& written, UnixTime fileDate, std::int64_t fileSize)
{
    Transaction transaction(database_);
    fileChanged(id, fileDate, fileSize);
    storeMetadataBase(database_, id, written);
    database_.run(R"(UPDATE photos SET dirty = 0 WHERE id = ? AND alt_text = ? AND title = ? AND caption = ?
    AND keywords = ? AND creator = ? AND copyright = ?)",
        id, written.altText.view(), written.title.view(), written.caption.view(), written.keywords.view(),
        written.creator.view(), written.copyright.view());
    dropMetadataBase(database_, id);
    transaction.commit();
}

void Catalog::metadataSeen(PhotoID id, const PhotoMetadata& inFile, UnixTime fileDate, std::int64_t fileSize)
{
    Transaction transaction(database_);
    fileChanged(id, fileDate, fileSize);
    storeMetadataBase(database_, id, inFile);
    transaction.commit();
}

} // namespace korvo
