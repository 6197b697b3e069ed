#include "bench/catalog/BareLoops.h"

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>

namespace korvo::bench {

namespace {

void require(int code, sqlite3* db)
{
    if (code == SQLITE_OK || code == SQLITE_DONE)
        return;
    std::fprintf(stderr, "%s\n", sqlite3_errmsg(db));
    std::exit(1);
}

sqlite3* opened(const std::filesystem::path& file)
{
    sqlite3* db = nullptr;
    require(sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_FULLMUTEX, nullptr), db);
    require(sqlite3_exec(db, "PRAGMA foreign_keys = ON", nullptr, nullptr, nullptr), db);
    return db;
}

std::string text(sqlite3_stmt* row, int column)
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return bytes ? std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(row, column)))
                 : std::string();
}

void bindText(sqlite3_stmt* statement, int index, std::string_view value)
{
    sqlite3_bind_text(
        statement, index, value.data() ? value.data() : "", static_cast<int>(value.size()), SQLITE_STATIC);
}

} // namespace

std::vector<BareRow> loadBare(const std::filesystem::path& file, const char* sql, std::size_t expected)
{
    sqlite3* const db = opened(file);
    sqlite3_stmt* row = nullptr;
    require(sqlite3_prepare_v2(db, sql, -1, &row, nullptr), db);
    std::vector<BareRow> rows;
    rows.reserve(expected);
    while (sqlite3_step(row) == SQLITE_ROW) {
        BareRow& to = rows.emplace_back();
        // The columns' places in the table are fixed.
        to.id = sqlite3_column_int64(row, 0);
        to.path = text(row, 2);
        to.addedAt = sqlite3_column_double(row, 4);
        to.mtime = sqlite3_column_double(row, 5);
        to.rating = sqlite3_column_int(row, 7);
        to.flagged = sqlite3_column_int(row, 8);
        to.dirty = sqlite3_column_int(row, 9);
        to.altText = text(row, 10);
        to.title = text(row, 11);
        to.caption = text(row, 12);
        to.keywords = text(row, 13);
        to.creator = text(row, 14);
        to.copyright = text(row, 15);
        to.edits = text(row, 16);
        to.meme = text(row, 17);
        to.label = sqlite3_column_int(row, 19);
        to.versionOf = sqlite3_column_int64(row, 20);
        to.versionName = text(row, 21);
        to.stackID = sqlite3_column_int64(row, 22);
        to.referencePath = text(row, 23);
        to.projectID = sqlite3_column_int64(row, 24);
        to.camera = text(row, 25);
        to.lens = text(row, 26);
        to.iso = sqlite3_column_int64(row, 27);
        to.focalLength = sqlite3_column_double(row, 28);
        to.aperture = sqlite3_column_double(row, 29);
        to.shutter = sqlite3_column_double(row, 30);
        to.captureDate = sqlite3_column_double(row, 32);
        to.people = text(row, 35);
        to.latitude = sqlite3_column_double(row, 36);
        to.longitude = sqlite3_column_double(row, 37);
        to.gpsRead = sqlite3_column_int(row, 38);
        to.place = text(row, 39);
    }
    sqlite3_finalize(row);
    sqlite3_close(db);
    return rows;
}

void insertBare(const std::filesystem::path& file, const std::vector<NewPhoto>& photos)
{
    sqlite3* const db = opened(file);
    sqlite3_stmt* insert = nullptr;
    require(sqlite3_prepare_v2(db,
                "INSERT OR IGNORE INTO photos (folder_id, path, filename, added_at, mtime, file_size, "
                "alt_text, title, caption, keywords, creator, copyright, "
                "camera, lens, iso, focal_length, aperture, shutter, capture_date, "
                "exif_read, capture_read, gps_read) "
                "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, 1, 1, 1)",
                -1, &insert, nullptr),
        db);
    require(sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr), db);
    for (const auto& photo : photos) {
        sqlite3_bind_int64(insert, 1, *photo.folderID);
        bindText(insert, 2, photo.path);
        bindText(insert, 3, std::string_view(photo.path).substr(photo.path.rfind('/') + 1));
        sqlite3_bind_double(insert, 4, photo.addedAt);
        sqlite3_bind_double(insert, 5, *photo.fileDate);
        sqlite3_bind_int64(insert, 6, *photo.fileSize);
        int index = 7;
        for (const auto* field : {&photo.metadata.altText, &photo.metadata.title, &photo.metadata.caption,
                 &photo.metadata.keywords, &photo.metadata.creator, &photo.metadata.copyright})
            bindText(insert, index++, field->view());
        const auto& camera = photo.camera;
        bindText(insert, 13, camera.camera);
        bindText(insert, 14, camera.lens);
        sqlite3_bind_int64(insert, 15, *camera.iso);
        sqlite3_bind_double(insert, 16, *camera.focalLength);
        sqlite3_bind_double(insert, 17, *camera.aperture);
        sqlite3_bind_double(insert, 18, *camera.shutter);
        sqlite3_bind_double(insert, 19, *camera.captureDate);
        require(sqlite3_step(insert), db);
        sqlite3_reset(insert);
    }
    require(sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr), db);
    sqlite3_finalize(insert);
    sqlite3_close(db);
}

void rateBare(const std::filesystem::path& file, const std::vector<PhotoID>& ids, int rating)
{
    sqlite3* const db = opened(file);
    sqlite3_stmt* update = nullptr;
    require(sqlite3_prepare_v2(db, "UPDATE photos SET rating = ? WHERE id = ?", -1, &update, nullptr), db);
    require(sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr), db);
    for (const auto id : ids) {
        sqlite3_bind_int(update, 1, rating);
        sqlite3_bind_int64(update, 2, id);
        require(sqlite3_step(update), db);
        sqlite3_reset(update);
    }
    require(sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr), db);
    sqlite3_finalize(update);
    sqlite3_close(db);
}

} // namespace korvo::bench
