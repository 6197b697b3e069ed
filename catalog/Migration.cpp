#include "catalog/Migration.h"

#include "catalog/PhotosTable.h"

namespace korvo {

namespace {

constexpr auto firstSchemaBeforePhotos = R"(
CREATE TABLE IF NOT EXISTS schema_info (version INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS folders (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    path TEXT NOT NULL UNIQUE,
    added_at REAL NOT NULL
);
)";

constexpr auto firstSchemaBehindPhotos = R"(
CREATE INDEX IF NOT EXISTS idx_photos_folder ON photos(folder_id);
CREATE INDEX IF NOT EXISTS idx_photos_dirty ON photos(dirty);
CREATE TABLE IF NOT EXISTS albums (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL,
    position INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE IF NOT EXISTS album_items (
    album_id INTEGER NOT NULL REFERENCES albums(id) ON DELETE CASCADE,
    photo_id INTEGER NOT NULL REFERENCES photos(id) ON DELETE CASCADE,
    position INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (album_id, photo_id)
);)";

constexpr auto groupTables = R"(
CREATE TABLE IF NOT EXISTS stacks (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    pick_photo_id INTEGER,
    collapsed INTEGER NOT NULL DEFAULT 1
);
CREATE TABLE IF NOT EXISTS smart_albums (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL,
    rules TEXT NOT NULL DEFAULT '{}',
    position INTEGER NOT NULL DEFAULT 0
);)";

constexpr auto projectTable = R"(
CREATE TABLE IF NOT EXISTS projects (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL,
    kind TEXT NOT NULL DEFAULT 'project',
    parent_id INTEGER REFERENCES projects(id) ON DELETE CASCADE,
    position INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IF NOT EXISTS idx_projects_parent ON projects(parent_id);)";

constexpr auto keywordTable = R"(
CREATE TABLE IF NOT EXISTS keywords (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL,
    parent_id INTEGER REFERENCES keywords(id) ON DELETE CASCADE
);
CREATE INDEX IF NOT EXISTS idx_keywords_parent ON keywords(parent_id);)";

constexpr auto faceTables = R"(
CREATE TABLE IF NOT EXISTS people (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL,
    key_face_id INTEGER,
    position INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE IF NOT EXISTS faces (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    photo_id INTEGER NOT NULL REFERENCES photos(id) ON DELETE CASCADE,
    x REAL NOT NULL,
    y REAL NOT NULL,
    w REAL NOT NULL,
    h REAL NOT NULL,
    image_w INTEGER NOT NULL DEFAULT 0,
    image_h INTEGER NOT NULL DEFAULT 0,
    quality REAL NOT NULL DEFAULT 0,
    print BLOB,
    person_id INTEGER REFERENCES people(id) ON DELETE SET NULL,
    manual INTEGER NOT NULL DEFAULT 0,
    ignored INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IF NOT EXISTS idx_faces_photo ON faces(photo_id);
CREATE INDEX IF NOT EXISTS idx_faces_person ON faces(person_id);
CREATE TABLE IF NOT EXISTS face_rejections (
    face_id INTEGER NOT NULL REFERENCES faces(id) ON DELETE CASCADE,
    person_id INTEGER NOT NULL REFERENCES people(id) ON DELETE CASCADE,
    PRIMARY KEY (face_id, person_id)
);)";

constexpr auto placeTable = R"(
CREATE TABLE IF NOT EXISTS place_names (
    key TEXT PRIMARY KEY,
    name TEXT NOT NULL,
    looked_up REAL NOT NULL
);)";

void addPhotoColumns(Database& database, std::initializer_list<std::string_view> definitions)
{
    for (const auto definition : definitions)
        addColumn(database, "photos", definition);
}

enum class ForeignKeys { on, off };

struct Step {
    std::int64_t version;
    void (*apply)(Database&);
    ForeignKeys foreignKeys = ForeignKeys::on;
};

constexpr Step steps[] = {
    {2, [](Database& db) { addPhotoColumns(db, {"edits TEXT NOT NULL DEFAULT ''"}); }},
    {3, [](Database& db) { addPhotoColumns(db, {"meme TEXT NOT NULL DEFAULT ''"}); }},
    {4, [](Database& db) { addPhotoColumns(db, {"metadata_backup TEXT NOT NULL DEFAULT ''"}); }},
    {5,
        [](Database& db) {
            db.exec(groupTables);
            rebuildPhotos(db);
        },
        ForeignKeys::off},
    {6, [](Database& db) { addPhotoColumns(db, {"reference_path TEXT NOT NULL DEFAULT ''"}); }},
    {7,
        [](Database& db) {
            db.exec(projectTable);
            addPhotoColumns(db, {"project_id INTEGER REFERENCES projects(id) ON DELETE SET NULL"});
            db.exec("CREATE INDEX IF NOT EXISTS idx_photos_project ON photos(project_id)");
        }},
    {8,
        [](Database& db) {
            addPhotoColumns(db,
                {"camera TEXT NOT NULL DEFAULT ''", "lens TEXT NOT NULL DEFAULT ''", "iso INTEGER",
                    "focal_length REAL", "aperture REAL", "shutter REAL",
                    "exif_read INTEGER NOT NULL DEFAULT 0"});
        }},
    {9,
        [](Database& db) {
            addColumn(db, "albums", "parent_id INTEGER REFERENCES projects(id) ON DELETE SET NULL");
            db.exec(keywordTable);
        }},
    {10,
        [](Database& db) {
            addPhotoColumns(db, {"capture_date REAL", "capture_read INTEGER NOT NULL DEFAULT 0"});
        }},
    {11,
        [](Database& db) {
            db.exec(faceTables);
            addPhotoColumns(
                db, {"faces_scanned INTEGER NOT NULL DEFAULT 0", "people TEXT NOT NULL DEFAULT ''"});
        }},
    {12,
        [](Database& db) {
            addPhotoColumns(db, {"latitude REAL", "longitude REAL", "gps_read INTEGER NOT NULL DEFAULT 0"});
        }},
    {13,
        [](Database& db) {
            db.exec(placeTable);
            addPhotoColumns(db, {"place TEXT NOT NULL DEFAULT ''"});
        }},
    {14, [](Database& db) { addPhotoColumns(db, {"stack_position INTEGER NOT NULL DEFAULT 0"}); }},
};

/// Switches foreign keys off for as long as it lives: dropping a table that others refer to would otherwise
/// delete or detach their rows. It has no effect inside a transaction.
class WithoutForeignKeys {
public:
    explicit WithoutForeignKeys(Database& database) : database_(database)
    {
        database_.exec("PRAGMA foreign_keys = OFF");
    }
    ~WithoutForeignKeys()
    {
        try {
            database_.exec("PRAGMA foreign_keys = ON");
        } catch (const DatabaseError&) {
            // The step that ran has failed too, and its error ends the opening of the library.
        }
    }
    WithoutForeignKeys(const WithoutForeignKeys&) = delete;
    WithoutForeignKeys& operator=(const WithoutForeignKeys&) = delete;

private:
    Database& database_;
};

/// One step and its version number in one commit, so that a crash leaves the one with the other.
void applyStep(Database& database, const Step& step)
{
    std::optional<WithoutForeignKeys> off;
    if (step.foreignKeys == ForeignKeys::off)
        off.emplace(database);
    Transaction transaction(database);
    // Another process may have taken the step while this one waited for the lock.
    if (database.scalar("SELECT version FROM schema_info") >= step.version)
        return;
    step.apply(database);
    database.exec("UPDATE schema_info SET version = " + std::to_string(step.version));
    transaction.commit();
}

bool hasTable(Database& database, std::string_view name)
{
    return database.scalar("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name = ?", name) > 0;
}

void createFirstSchema(Database& database)
{
    // An existing catalog is opened without asking for the write lock, which another process may hold for
    // long.
    std::optional<Transaction> transaction;
    if (!hasTable(database, "schema_info"))
        transaction.emplace(database);
    database.exec(firstSchemaBeforePhotos + firstPhotosTable() + firstSchemaBehindPhotos);
    if (database.scalar("SELECT COUNT(*) FROM schema_info") == 0)
        database.exec("INSERT INTO schema_info (version) VALUES (1)");
    if (transaction)
        transaction->commit();
}

void repairHalfRebuiltPhotos(Database& database)
{
    if (!photosIsHalfRebuilt(database))
        return;
    const WithoutForeignKeys off(database);
    Transaction transaction(database);
    rebuildPhotos(database);
    addColumn(database, "photos", "reference_path TEXT NOT NULL DEFAULT ''");
    transaction.commit();
}

void ensureIndexes(Database& database)
{
    database.exec("DROP INDEX IF EXISTS idx_photos_path_version");
    database.exec(
        "CREATE UNIQUE INDEX IF NOT EXISTS idx_photos_master_path ON photos(path) WHERE version_of IS NULL");
    // Without it each photo that is deleted looks through the members of all albums.
    database.exec("CREATE INDEX IF NOT EXISTS idx_album_items_photo ON album_items(photo_id)");
}

} // namespace

void refuseNewerSchema(Database& database)
{
    if (!hasTable(database, "schema_info"))
        return;
    const auto version = database.scalar("SELECT version FROM schema_info");
    if (version > currentSchemaVersion)
        throw DatabaseError::open("it was written by a later version of Korvo (catalog version "
            + std::to_string(version) + ", this program knows up to " + std::to_string(currentSchemaVersion)
            + "). Nothing was changed; open it with that version.");
}

void migrate(Database& database)
{
    createFirstSchema(database);
    for (const Step& step : steps) {
        if (database.scalar("SELECT version FROM schema_info") < step.version)
            applyStep(database, step);
        if (step.version == 5)
            repairHalfRebuiltPhotos(database);
    }
    ensureIndexes(database);
}

} // namespace korvo
