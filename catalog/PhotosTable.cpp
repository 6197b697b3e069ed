#include "catalog/PhotosTable.h"

#include <algorithm>
#include <array>
#include <string>

namespace korvo {

namespace {

/// The columns that `photos` has had from the start, before and behind the one constraint it lost.
constexpr auto columnsToPath = R"(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    folder_id INTEGER REFERENCES folders(id) ON DELETE CASCADE,
    path TEXT NOT NULL)";
constexpr auto columnsBehindPath = R"(,
    filename TEXT NOT NULL,
    added_at REAL NOT NULL,
    mtime REAL,
    file_size INTEGER,
    rating INTEGER NOT NULL DEFAULT 0,
    flagged INTEGER NOT NULL DEFAULT 0,
    dirty INTEGER NOT NULL DEFAULT 0,
    alt_text TEXT NOT NULL DEFAULT '',
    title TEXT NOT NULL DEFAULT '',
    caption TEXT NOT NULL DEFAULT '',
    keywords TEXT NOT NULL DEFAULT '',
    creator TEXT NOT NULL DEFAULT '',
    copyright TEXT NOT NULL DEFAULT '')";

/// What the rebuild adds to them. Later columns are added behind.
constexpr auto rebuiltColumns = R"(,
    edits TEXT NOT NULL DEFAULT '',
    meme TEXT NOT NULL DEFAULT '',
    metadata_backup TEXT NOT NULL DEFAULT '',
    label INTEGER NOT NULL DEFAULT 0,
    version_of INTEGER REFERENCES photos(id) ON DELETE CASCADE,
    version_name TEXT NOT NULL DEFAULT '',
    stack_id INTEGER REFERENCES stacks(id) ON DELETE SET NULL
)";

constexpr auto rebuiltIndexes = R"(
CREATE INDEX IF NOT EXISTS idx_photos_folder ON photos(folder_id);
CREATE INDEX IF NOT EXISTS idx_photos_dirty ON photos(dirty);
CREATE INDEX IF NOT EXISTS idx_photos_version_of ON photos(version_of);
CREATE INDEX IF NOT EXISTS idx_photos_stack ON photos(stack_id);
CREATE UNIQUE INDEX IF NOT EXISTS idx_photos_master_path ON photos(path) WHERE version_of IS NULL;)";

struct Column {
    std::string name;
    std::string definition; // as ALTER TABLE ADD COLUMN takes it
};

std::vector<Column> columnsOf(Database& database, std::string_view table)
{
    std::vector<Column> columns;
    auto statement = database.prepare(
        "SELECT p.name, p.type, p.\"notnull\", p.dflt_value, f.\"table\", f.\"to\", f.on_delete "
        "FROM pragma_table_info(?1) p LEFT JOIN pragma_foreign_key_list(?1) f ON f.\"from\" = p.name");
    statement.bind(table);
    while (statement.step()) {
        Column column{std::string(statement.text(0)), {}};
        column.definition = column.name + " " + std::string(statement.text(1));
        if (statement.integer(2))
            column.definition += " NOT NULL";
        if (!statement.isNull(3))
            column.definition += " DEFAULT " + std::string(statement.text(3));
        if (!statement.isNull(4))
            column.definition += " REFERENCES " + std::string(statement.text(4)) + "("
                + std::string(statement.text(5)) + ") ON DELETE " + std::string(statement.text(6));
        columns.push_back(std::move(column));
    }
    return columns;
}

bool contains(const std::vector<Column>& columns, std::string_view name)
{
    return std::any_of(
        columns.begin(), columns.end(), [&](const Column& column) { return column.name == name; });
}

} // namespace

std::string firstPhotosTable()
{
    return std::string("CREATE TABLE IF NOT EXISTS photos (") + columnsToPath + " UNIQUE" + columnsBehindPath
        + "\n);";
}

void addColumn(Database& database, std::string_view table, std::string_view definition)
{
    try {
        database.exec("ALTER TABLE " + std::string(table) + " ADD COLUMN " + std::string(definition));
    } catch (const DatabaseError&) {
        // The column may exist already: half-migrated catalogs are opened again. Anything else is an error.
        if (!contains(columnsOf(database, table), definition.substr(0, definition.find(' '))))
            throw;
    }
}

void rebuildPhotos(Database& database)
{
    database.exec("DROP TABLE IF EXISTS photos_rebuild");
    database.exec(std::string("CREATE TABLE photos_rebuild (") + columnsToPath + columnsBehindPath
        + rebuiltColumns + ")");
    const auto held = columnsOf(database, "photos");
    const auto made = columnsOf(database, "photos_rebuild");
    std::string names;
    for (const auto& column : held) {
        if (!contains(made, column.name))
            addColumn(database, "photos_rebuild", column.definition);
        names += (names.empty() ? "" : ", ") + column.name;
    }
    database.exec("INSERT INTO photos_rebuild (" + names + ") SELECT " + names + " FROM photos");
    const auto lastID = database.scalar("SELECT seq FROM sqlite_sequence WHERE name = 'photos'");
    database.exec("DROP TABLE photos");
    database.exec("ALTER TABLE photos_rebuild RENAME TO photos");
    // The ids of deleted photos are never given again: other rows and caches may still know them.
    database.exec("DELETE FROM sqlite_sequence WHERE name = 'photos'");
    database.run(
        "INSERT INTO sqlite_sequence (name, seq) SELECT 'photos', MAX(?, COALESCE(MAX(id), 0)) FROM photos",
        lastID);
    database.exec(rebuiltIndexes);
    if (contains(held, "project_id"))
        database.exec("CREATE INDEX IF NOT EXISTS idx_photos_project ON photos(project_id)");
}

bool photosIsHalfRebuilt(Database& database)
{
    return database.scalar("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name = 'photos' "
                           "AND instr(sql, 'photos_v5') > 0")
        > 0;
}

} // namespace korvo
