#include "catalog/sql/ChangeIterator.h"

#include <algorithm>

namespace korvo {

namespace {

constexpr const char* recordedTables[] = {"folders", "photos", "albums", "album_items", "stacks",
    "smart_albums", "projects", "keywords", "people", "faces", "face_rejections"};

struct FreeMemory {
    void operator()(void* memory) const { sqlite3_free(memory); }
};

void check(int code, const char* what)
{
    if (code != SQLITE_OK)
        throw DatabaseError::step(sqlite3_errstr(code), what);
}

Changeset takeOver(void* bytes, int size)
{
    const std::unique_ptr<void, FreeMemory> owner(bytes);
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    return Changeset(std::vector<std::uint8_t>(first, first + size));
}

int placeOf(std::string_view column, const std::vector<std::string>& columns)
{
    return static_cast<int>(std::find(columns.begin(), columns.end(), column) - columns.begin());
}

void note(ChangedRows& rows, const ChangeIterator& change, const std::vector<std::string>& photoColumns)
{
    using Operation = ChangeIterator::Operation;
    const auto id = sqlite3_value_int64(change.key(0));
    if (change.table() == "album_items") {
        rows.albums.insert(id); // the first part of its key
        rows.tree = true; // the album's count
    } else if (change.table() != "photos") {
        rows.tree = rows.tree || change.table() != "stacks";
    } else if (change.operation() == Operation::update) {
        rows.updated.push_back(id);
        for (int column = 0; column < change.columnCount(); ++column)
            if (change.after(column))
                rows.photoColumns.insert(photoColumns[static_cast<std::size_t>(column)]);
    } else {
        (change.operation() == Operation::insert ? rows.inserted : rows.deleted).push_back(id);
    }
}

/// A smart album, unless it only stands elsewhere now.
void noteSmartAlbum(ChangedRows& rows, const ChangeIterator& change, int positionColumn)
{
    if (change.table() != "smart_albums")
        return;
    bool isSame = change.operation() == ChangeIterator::Operation::update;
    for (int column = 0; column < change.columnCount(); ++column)
        isSame = isSame && (column == positionColumn || !change.after(column));
    if (!isSame)
        rows.smartAlbums.insert(sqlite3_value_int64(change.key(0)));
}

/// The stacks that a change names: the one that is changed, or those that a photo leaves and enters.
void noteStacks(ChangedRows& rows, const ChangeIterator& change, int stackColumn)
{
    if (change.table() == "stacks")
        rows.stackIDs.insert(sqlite3_value_int64(change.key(0)));
    if (change.table() != "photos")
        return;
    for (sqlite3_value* const value : {change.before(stackColumn), change.after(stackColumn)})
        if (value && sqlite3_value_type(value) != SQLITE_NULL)
            rows.stackIDs.insert(sqlite3_value_int64(value));
}

/// The stacks that changed photos are in: of one that moved within its own the change does not say which.
void noteOwnStacks(ChangedRows& rows, Database& database)
{
    auto statement = database.kept("SELECT stack_id FROM photos WHERE id = ? AND stack_id IS NOT NULL");
    for (const auto photo : rows.updated) {
        statement.bind(photo);
        if (statement.step())
            rows.stackIDs.insert(statement.integer(0));
    }
}

} // namespace

void ChangeRecorder::Delete::operator()(sqlite3_session* session) const
{
    sqlite3session_delete(session);
}

ChangeRecorder::ChangeRecorder(Database& database)
{
    sqlite3_session* session = nullptr;
    check(sqlite3session_create(database.handle(), "main", &session), "record changes");
    session_.reset(session);
    for (const char* table : recordedTables)
        check(sqlite3session_attach(session, table), "record changes");
}

Changeset ChangeRecorder::changes() const
{
    int size = 0;
    void* bytes = nullptr;
    check(sqlite3session_changeset(session_.get(), &size, &bytes), "collect changes");
    return takeOver(bytes, size);
}

Changeset Changeset::inverted() const
{
    int size = 0;
    void* bytes = nullptr;
    check(sqlite3changeset_invert(static_cast<int>(bytes_.size()), bytes_.data(), &size, &bytes),
        "invert changes");
    return takeOver(bytes, size);
}

void merge(ChangedRows& rows, const ChangedRows& more)
{
    for (const auto ids : {&ChangedRows::inserted, &ChangedRows::updated, &ChangedRows::deleted}) {
        auto& all = rows.*ids;
        all.insert(all.end(), (more.*ids).begin(), (more.*ids).end());
        std::sort(all.begin(), all.end());
        all.erase(std::unique(all.begin(), all.end()), all.end());
    }
    for (const auto ids : {&ChangedRows::albums, &ChangedRows::smartAlbums, &ChangedRows::stackIDs})
        (rows.*ids).insert((more.*ids).begin(), (more.*ids).end());
    rows.photoColumns.insert(more.photoColumns.begin(), more.photoColumns.end());
    rows.stacks |= more.stacks;
    rows.tree |= more.tree;
}

ChangedRows changedRows(Database& database, const Changeset& changes)
{
    const auto columns = database.columnsOf("photos");
    const auto stackColumn = placeOf("stack_id", columns);
    const auto positionColumn = placeOf("position", database.columnsOf("smart_albums"));
    ChangedRows rows;
    for (ChangeIterator change(changes); change.next();) {
        note(rows, change, columns);
        noteSmartAlbum(rows, change, positionColumn);
        noteStacks(rows, change, stackColumn);
    }
    if (rows.photoColumns.contains("stack_position"))
        noteOwnStacks(rows, database);
    rows.stacks = !rows.stackIDs.empty();
    return rows;
}

} // namespace korvo
