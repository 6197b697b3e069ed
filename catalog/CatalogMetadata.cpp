// What the files hold and what the catalog holds, kept in step.

#include "catalog/Catalog.h"
#include "catalog/MetadataBase.h"
#include "catalog/PhotoRows.h"

#include <unordered_set>

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

} // namespace

std::vector<std::pair<PhotoID, std::string>> Catalog::photosToRead(std::int64_t limit, PhotoID after)
{
    return idsAndPaths(*this,
        "SELECT id, path FROM photos WHERE id > ? AND version_of IS NULL AND (exif_read = 0 OR capture_read "
        "= 0) "
        "ORDER BY id LIMIT ?",
        after, limit);
}

std::vector<std::pair<PhotoID, std::string>> Catalog::photosToLocate(std::int64_t limit, PhotoID after)
{
    return idsAndPaths(*this,
        "SELECT id, path FROM photos WHERE id > ? AND version_of IS NULL AND gps_read = 0 ORDER BY id LIMIT "
        "?",
        after, limit);
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
