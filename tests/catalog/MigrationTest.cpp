#include "catalog/Migration.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

/// What the programs of each earlier version made, first to last.
const std::vector<std::string> history = {
    R"(CREATE TABLE schema_info (version INTEGER NOT NULL);
CREATE TABLE folders (id INTEGER PRIMARY KEY AUTOINCREMENT, path TEXT NOT NULL UNIQUE, added_at REAL NOT NULL);
CREATE TABLE photos (id INTEGER PRIMARY KEY AUTOINCREMENT, folder_id INTEGER REFERENCES folders(id) ON DELETE CASCADE,
  path TEXT NOT NULL UNIQUE, filename TEXT NOT NULL, added_at REAL NOT NULL, mtime REAL, file_size INTEGER,
  rating INTEGER NOT NULL DEFAULT 0, flagged INTEGER NOT NULL DEFAULT 0, dirty INTEGER NOT NULL DEFAULT 0,
  alt_text TEXT NOT NULL DEFAULT '', title TEXT NOT NULL DEFAULT '', caption TEXT NOT NULL DEFAULT '',
  keywords TEXT NOT NULL DEFAULT '', creator TEXT NOT NULL DEFAULT '', copyright TEXT NOT NULL DEFAULT '');
CREATE INDEX idx_photos_folder ON photos(folder_id); CREATE INDEX idx_photos_dirty ON photos(dirty);
CREATE TABLE albums (id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL, position INTEGER NOT NULL DEFAULT 0);
CREATE TABLE album_items (album_id INTEGER NOT NULL REFERENCES albums(id) ON DELETE CASCADE,
  photo_id INTEGER NOT NULL REFERENCES photos(id) ON DELETE CASCADE, position INTEGER NOT NULL DEFAULT 0,
  PRIMARY KEY (album_id, photo_id));
INSERT INTO schema_info VALUES (1);
INSERT INTO folders (path, added_at) VALUES ('/f', 1.5);
INSERT INTO photos (id, folder_id, path, filename, added_at, rating, title) VALUES (7, 1, '/f/a.jpg', 'a.jpg', 2.5, 4, 'T');
INSERT INTO albums (name) VALUES ('A'); INSERT INTO album_items (album_id, photo_id) VALUES (1, 7);)",
    "ALTER TABLE photos ADD COLUMN edits TEXT NOT NULL DEFAULT ''; UPDATE schema_info SET version = 2",
    "ALTER TABLE photos ADD COLUMN meme TEXT NOT NULL DEFAULT ''; UPDATE schema_info SET version = 3",
    "ALTER TABLE photos ADD COLUMN metadata_backup TEXT NOT NULL DEFAULT ''; UPDATE schema_info SET version "
    "= 4",
    R"(PRAGMA foreign_keys = OFF; BEGIN;
CREATE TABLE stacks (id INTEGER PRIMARY KEY AUTOINCREMENT, pick_photo_id INTEGER, collapsed INTEGER NOT NULL DEFAULT 1);
CREATE TABLE smart_albums (id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,
  rules TEXT NOT NULL DEFAULT '{}', position INTEGER NOT NULL DEFAULT 0);
CREATE TABLE photos_NEW (id INTEGER PRIMARY KEY AUTOINCREMENT,
  folder_id INTEGER REFERENCES folders(id) ON DELETE CASCADE, path TEXT NOT NULL, filename TEXT NOT NULL,
  added_at REAL NOT NULL, mtime REAL, file_size INTEGER, rating INTEGER NOT NULL DEFAULT 0,
  flagged INTEGER NOT NULL DEFAULT 0, dirty INTEGER NOT NULL DEFAULT 0, alt_text TEXT NOT NULL DEFAULT '',
  title TEXT NOT NULL DEFAULT '', caption TEXT NOT NULL DEFAULT '', keywords TEXT NOT NULL DEFAULT '',
  creator TEXT NOT NULL DEFAULT '', copyright TEXT NOT NULL DEFAULT '', edits TEXT NOT NULL DEFAULT '',
  meme TEXT NOT NULL DEFAULT '', metadata_backup TEXT NOT NULL DEFAULT '', label INTEGER NOT NULL DEFAULT 0,
  version_of INTEGER REFERENCES photos_REF(id) ON DELETE CASCADE, version_name TEXT NOT NULL DEFAULT '',
  stack_id INTEGER REFERENCES stacks(id) ON DELETE SET NULL);
INSERT INTO photos_NEW (id, folder_id, path, filename, added_at, rating, title)
  SELECT id, folder_id, path, filename, added_at, rating, title FROM photos;
DROP TABLE photos; PRAGMA legacy_alter_table = ON; ALTER TABLE photos_NEW RENAME TO photos; PRAGMA legacy_alter_table = OFF;
CREATE INDEX idx_photos_folder ON photos(folder_id); CREATE INDEX idx_photos_dirty ON photos(dirty);
CREATE INDEX idx_photos_version_of ON photos(version_of); CREATE INDEX idx_photos_stack ON photos(stack_id);
CREATE UNIQUE INDEX idx_photos_path_version ON photos(path, version_of);
UPDATE schema_info SET version = 5; COMMIT;)",
    "ALTER TABLE photos ADD COLUMN reference_path TEXT NOT NULL DEFAULT ''; UPDATE schema_info SET version = "
    "6",
    R"(CREATE TABLE projects (id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,
  kind TEXT NOT NULL DEFAULT 'project', parent_id INTEGER REFERENCES projects(id) ON DELETE CASCADE,
  position INTEGER NOT NULL DEFAULT 0);
CREATE INDEX idx_projects_parent ON projects(parent_id);
ALTER TABLE photos ADD COLUMN project_id INTEGER REFERENCES projects(id) ON DELETE SET NULL;
CREATE INDEX idx_photos_project ON photos(project_id); UPDATE schema_info SET version = 7)",
    R"(ALTER TABLE photos ADD COLUMN camera TEXT NOT NULL DEFAULT ''; ALTER TABLE photos ADD COLUMN lens TEXT NOT NULL DEFAULT '';
ALTER TABLE photos ADD COLUMN iso INTEGER; ALTER TABLE photos ADD COLUMN focal_length REAL;
ALTER TABLE photos ADD COLUMN aperture REAL; ALTER TABLE photos ADD COLUMN shutter REAL;
ALTER TABLE photos ADD COLUMN exif_read INTEGER NOT NULL DEFAULT 0; UPDATE schema_info SET version = 8)",
    R"(ALTER TABLE albums ADD COLUMN parent_id INTEGER REFERENCES projects(id) ON DELETE SET NULL;
CREATE TABLE keywords (id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,
  parent_id INTEGER REFERENCES keywords(id) ON DELETE CASCADE);
CREATE INDEX idx_keywords_parent ON keywords(parent_id); UPDATE schema_info SET version = 9)",
    R"(ALTER TABLE photos ADD COLUMN capture_date REAL;
ALTER TABLE photos ADD COLUMN capture_read INTEGER NOT NULL DEFAULT 0; UPDATE schema_info SET version = 10)",
    R"(CREATE TABLE people (id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL, key_face_id INTEGER,
  position INTEGER NOT NULL DEFAULT 0);
CREATE TABLE faces (id INTEGER PRIMARY KEY AUTOINCREMENT,
  photo_id INTEGER NOT NULL REFERENCES photos(id) ON DELETE CASCADE, x REAL NOT NULL, y REAL NOT NULL,
  w REAL NOT NULL, h REAL NOT NULL, image_w INTEGER NOT NULL DEFAULT 0, image_h INTEGER NOT NULL DEFAULT 0,
  quality REAL NOT NULL DEFAULT 0, print BLOB, person_id INTEGER REFERENCES people(id) ON DELETE SET NULL,
  manual INTEGER NOT NULL DEFAULT 0, ignored INTEGER NOT NULL DEFAULT 0);
CREATE INDEX idx_faces_photo ON faces(photo_id); CREATE INDEX idx_faces_person ON faces(person_id);
CREATE TABLE face_rejections (face_id INTEGER NOT NULL REFERENCES faces(id) ON DELETE CASCADE,
  person_id INTEGER NOT NULL REFERENCES people(id) ON DELETE CASCADE, PRIMARY KEY (face_id, person_id));
ALTER TABLE photos ADD COLUMN faces_scanned INTEGER NOT NULL DEFAULT 0;
ALTER TABLE photos ADD COLUMN people TEXT NOT NULL DEFAULT ''; UPDATE schema_info SET version = 11)",
    R"(ALTER TABLE photos ADD COLUMN latitude REAL; ALTER TABLE photos ADD COLUMN longitude REAL;
ALTER TABLE photos ADD COLUMN gps_read INTEGER NOT NULL DEFAULT 0; UPDATE schema_info SET version = 12)",
    R"(CREATE TABLE place_names (key TEXT PRIMARY KEY, name TEXT NOT NULL, looked_up REAL NOT NULL);
ALTER TABLE photos ADD COLUMN place TEXT NOT NULL DEFAULT ''; UPDATE schema_info SET version = 13)",
};

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

/// A catalog as a program of that version left it. `rebuilt` is the name its version 5 gave the new table,
/// and `referred` the one it let versions refer to.
void writeHistory(Database& db, std::size_t version, const std::string& rebuilt, const std::string& referred)
{
    for (std::size_t v = 0; v < version; ++v)
        db.exec(replaced(replaced(history[v], "photos_NEW", rebuilt), "photos_REF", referred));
}

/// Every table, column, constraint and index, as SQLite understands them.
std::string schemaOf(Database& db)
{
    std::string text;
    const auto list = [&](const char* sql) {
        auto statement = db.prepare(sql);
        while (statement.step())
            (text += statement.text(0)) += '\n';
    };
    list(
        "SELECT m.name || ' ' || group_concat(c.name || ' ' || c.type || ' ' || c.\"notnull\" || ' ' || "
        "COALESCE(c.dflt_value, '-') || ' ' || c.pk, ', ') FROM sqlite_master m, pragma_table_info(m.name) c "
        "WHERE m.type = 'table' AND m.name NOT LIKE 'sqlite_%' GROUP BY m.name ORDER BY m.name");
    list("SELECT m.name || ' ' || f.\"from\" || ' -> ' || f.\"table\" || '(' || f.\"to\" || ') ' || "
         "f.on_delete "
         "FROM sqlite_master m, pragma_foreign_key_list(m.name) f WHERE m.type = 'table' ORDER BY 1");
    list("SELECT m.name || ' ' || i.name || ' ' || i.\"unique\" || ' ' || i.partial || ' ' || "
         "(SELECT group_concat(name) FROM pragma_index_info(i.name)) "
         "FROM sqlite_master m, pragma_index_list(m.name) i WHERE m.type = 'table' ORDER BY 1");
    return text;
}

std::string newSchema()
{
    const TemporaryFolder folder;
    Database db(folder / "new.sqlite");
    migrate(db);
    return schemaOf(db);
}

} // namespace

TEST(Migration, everyEarlierVersionEndsWithTheSchemaOfANewLibraryAndItsRows)
{
    const auto expected = newSchema();
    for (std::size_t version = 1; version <= history.size(); ++version) {
        SCOPED_TRACE(version);
        const TemporaryFolder folder;
        Database db(folder / "old.sqlite");
        writeHistory(db, version, "photos_x", "photos");
        db.exec("PRAGMA foreign_keys = ON");
        migrate(db);
        EXPECT_EQ(schemaOf(db), expected);
        EXPECT_EQ(db.scalar("SELECT version FROM schema_info"), 14);
        EXPECT_EQ(
            db.scalar("SELECT COUNT(*) FROM photos WHERE id = 7 AND folder_id = 1 AND path = '/f/a.jpg' "
                      "AND rating = 4 AND title = 'T' AND added_at = 2.5"),
            1);
        EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM album_items"), 1)
            << "rebuilding must not delete by cascade";
        EXPECT_TRUE(db.query("PRAGMA foreign_key_check").empty());
        EXPECT_EQ(db.scalar("PRAGMA foreign_keys"), 1);
        migrate(db);
        EXPECT_EQ(schemaOf(db), expected) << "a second run changes nothing";
    }
}

TEST(Migration, newSchemaHasTheColumnsInTheirOrder)
{
    const auto schema = newSchema();
    for (const std::string expected :
        {"albums id INTEGER 0 - 1, name TEXT 1 - 0, position INTEGER 1 0 0, parent_id INTEGER 0 - 0\n",
            "photos id INTEGER 0 - 1, folder_id INTEGER 0 - 0, path TEXT 1 - 0, filename TEXT 1 - 0, "
            "added_at REAL 1 - 0, "
            "mtime REAL 0 - 0, file_size INTEGER 0 - 0, rating INTEGER 1 0 0, flagged INTEGER 1 0 0, dirty "
            "INTEGER 1 0 0, "
            "alt_text TEXT 1 '' 0, title TEXT 1 '' 0, caption TEXT 1 '' 0, keywords TEXT 1 '' 0, creator "
            "TEXT 1 '' 0, "
            "copyright TEXT 1 '' 0, edits TEXT 1 '' 0, meme TEXT 1 '' 0, metadata_backup TEXT 1 '' 0, label "
            "INTEGER 1 0 0, "
            "version_of INTEGER 0 - 0, version_name TEXT 1 '' 0, stack_id INTEGER 0 - 0, reference_path TEXT "
            "1 '' 0, "
            "project_id INTEGER 0 - 0, camera TEXT 1 '' 0, lens TEXT 1 '' 0, iso INTEGER 0 - 0, focal_length "
            "REAL 0 - 0, "
            "aperture REAL 0 - 0, shutter REAL 0 - 0, exif_read INTEGER 1 0 0, capture_date REAL 0 - 0, "
            "capture_read INTEGER 1 0 0, faces_scanned INTEGER 1 0 0, people TEXT 1 '' 0, latitude REAL 0 - "
            "0, "
            "longitude REAL 0 - 0, gps_read INTEGER 1 0 0, place TEXT 1 '' 0, stack_position INTEGER 1 0 0\n",
            "photos version_of -> photos(id) CASCADE\n", "photos stack_id -> stacks(id) SET NULL\n",
            "album_items idx_album_items_photo 0 0 photo_id\n", "photos idx_photos_master_path 1 1 path\n",
            "photos idx_photos_project 0 0 project_id\n", "keywords parent_id -> keywords(id) CASCADE\n",
            "faces person_id -> people(id) SET NULL\n"})
        EXPECT_NE(schema.find(expected), schema.npos) << expected << "is not in\n" << schema;
    EXPECT_EQ(schema.find("idx_photos_path_version"), schema.npos);
}

TEST(Migration, aHalfRebuiltTableIsRepairedWithAllItHolds)
{
    const auto expected = newSchema();
    for (const std::size_t version : {5U, 8U, 13U}) {
        SCOPED_TRACE(version);
        const TemporaryFolder folder;
        Database db(folder / "old.sqlite");
        writeHistory(db, version, "photos_x", "photos_v5");
        db.exec("PRAGMA foreign_keys = OFF; UPDATE photos SET label = 3;"
                "INSERT INTO stacks (id) VALUES (2); UPDATE photos SET stack_id = 2;"
                "INSERT INTO photos (id, path, filename, added_at, version_of, version_name) "
                "VALUES (8, '/f/a.jpg', 'a.jpg', 3, 7, 'Version 2');");
        if (version >= 8)
            db.exec("UPDATE photos SET camera = 'Leica', iso = 200 WHERE id = 7");
        db.exec("PRAGMA foreign_keys = ON");
        migrate(db);
        EXPECT_EQ(schemaOf(db), expected);
        EXPECT_EQ(
            db.scalar(
                "SELECT COUNT(*) FROM photos WHERE id = 8 AND version_of = 7 AND version_name = 'Version 2'"),
            1);
        EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM photos WHERE id = 7 AND label = 3 AND stack_id = 2"), 1);
        EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM photos WHERE camera = 'Leica' AND iso = 200"),
            version >= 8 ? 1 : 0);
    }
}

TEST(Migration, aFailingStepLeavesTheVersionOfTheOneBefore)
{
    const TemporaryFolder folder;
    Database db(folder / "old.sqlite");
    writeHistory(db, 6, "photos_x", "photos");
    db.exec("CREATE VIEW projects AS SELECT 1"); // stands in the way of step 7
    EXPECT_THROW(migrate(db), DatabaseError);
    EXPECT_EQ(db.scalar("SELECT version FROM schema_info"), 6);
    EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM pragma_table_info('photos') WHERE name = 'project_id'"), 0);
    db.exec("DROP VIEW projects");
    migrate(db);
    EXPECT_EQ(schemaOf(db), newSchema());
}

TEST(Migration, aColumnThatIsThereAlreadyStopsNothing)
{
    const TemporaryFolder folder;
    Database db(folder / "old.sqlite");
    writeHistory(db, 9, "photos_x", "photos");
    db.exec("ALTER TABLE photos ADD COLUMN capture_date REAL");
    migrate(db);
    EXPECT_EQ(schemaOf(db), newSchema());
}

} // namespace korvo
