#include "catalog/ChangeIterator.h"

#include <algorithm>
#include <map>
#include <memory>
#include <unordered_map>

namespace korvo {

namespace {

using Operation = ChangeIterator::Operation;
using ColumnNames = std::vector<std::string>;

/// The statements and the tables' columns that one replay needs. The texts vary with the columns that
/// changed, so that none of them is worth keeping for another.
class Prepared {
public:
    explicit Prepared(Database& database) : database_(database) { }

    Statement& statement(const std::string& sql)
    {
        auto& made = statements_[sql];
        if (!made)
            made.reset(new Statement(database_.prepare(sql))); // it cannot be moved
        return *made;
    }

    const ColumnNames& columnsOf(std::string_view table)
    {
        const auto [entry, isNew] = columns_.try_emplace(std::string(table));
        if (isNew)
            entry->second = database_.columnsOf(table);
        return entry->second;
    }

private:
    Database& database_;
    std::unordered_map<std::string, std::unique_ptr<Statement>> statements_;
    std::map<std::string, ColumnNames, std::less<>> columns_;
};

/// A statement's text and the values for its parameters, in order.
struct Replay {
    std::string sql;
    std::vector<sqlite3_value*> values;

    void add(std::string_view separator, const std::string& text, sqlite3_value* value)
    {
        (sql += values.empty() ? std::string_view() : separator) += text;
        values.push_back(value);
    }
};

void addKey(Replay& replay, const ChangeIterator& change, const ColumnNames& columns)
{
    replay.sql += " WHERE ";
    Replay key;
    for (int column = 0; column < change.columnCount(); ++column)
        if (change.isKey(column))
            key.add(" AND ", columns[static_cast<std::size_t>(column)] + " IS ?", change.key(column));
    replay.sql += key.sql;
    replay.values.insert(replay.values.end(), key.values.begin(), key.values.end());
}

Replay replayOf(const ChangeIterator& change, const ColumnNames& columns)
{
    const std::string table(change.table());
    Replay replay;
    switch (change.operation()) {
    case Operation::insert:
        replay.sql = "INSERT INTO " + table + " VALUES (";
        for (int column = 0; column < change.columnCount(); ++column)
            replay.add(", ", "?", change.after(column));
        replay.sql += ")";
        break;
    case Operation::update:
        replay.sql = "UPDATE " + table + " SET ";
        for (int column = 0; column < change.columnCount(); ++column)
            if (sqlite3_value* const value = change.after(column))
                replay.add(", ", columns[static_cast<std::size_t>(column)] + " = ?", value);
        addKey(replay, change, columns);
        break;
    case Operation::remove:
        replay.sql = "DELETE FROM " + table;
        addKey(replay, change, columns);
        break;
    }
    return replay;
}

/// Gives the photos and folders that get another path, or go, a path that nothing else has, so that two of
/// them may change places and one may come back where another goes.
void freePaths(Database& database, const Changeset& changes)
{
    constexpr int folderPath = 1;
    constexpr int photoPath = 2;
    for (ChangeIterator change(changes); change.next();) {
        const bool isPhoto = change.table() == "photos";
        if (change.operation() == Operation::insert || (!isPhoto && change.table() != "folders"))
            continue;
        if (change.operation() == Operation::update && !change.after(isPhoto ? photoPath : folderPath))
            continue;
        database.run(isPhoto ? "UPDATE photos SET path = 'moving ' || id WHERE id = ?"
                             : "UPDATE folders SET path = 'moving ' || id WHERE id = ?",
            sqlite3_value_int64(change.key(0)));
    }
}

/// A reference of a row that its table can do without, and what takes it away when its target is gone.
struct Reference {
    std::string_view table, column, drop;
};
constexpr Reference looseReferences[] = {
    {"photos", "stack_id",
        "UPDATE photos SET stack_id = NULL WHERE id = ? AND stack_id NOT IN (SELECT id FROM stacks)"},
    {"photos", "project_id",
        "UPDATE photos SET project_id = NULL WHERE id = ? AND project_id NOT IN (SELECT id FROM projects)"},
    {"photos", "folder_id",
        "UPDATE photos SET folder_id = NULL WHERE id = ? AND folder_id NOT IN (SELECT id FROM folders)"},
    {"albums", "parent_id",
        "UPDATE albums SET parent_id = NULL WHERE id = ? AND parent_id NOT IN (SELECT id FROM projects)"},
    // others may have put the one that it comes back to into it
    {"projects", "parent_id",
        "UPDATE projects SET parent_id = NULL WHERE id = ?1 AND (parent_id NOT IN (SELECT id FROM projects) "
        "OR ?1 IN (WITH RECURSIVE above(id) AS (SELECT parent_id FROM projects WHERE id = ?1 "
        "UNION SELECT parent_id FROM projects JOIN above USING (id)) SELECT id FROM above))"},
};

/// Takes from rows that come back what they referred to and others have deleted meanwhile.
void dropLostReferences(Database& database, Prepared& prepared, const Changeset& changes)
{
    for (ChangeIterator change(changes); change.next();)
        for (const auto& [table, column, drop] : looseReferences) {
            if (change.table() != table || change.operation() == Operation::remove)
                continue;
            const auto& columns = prepared.columnsOf(table);
            const auto at = std::find(columns.begin(), columns.end(), column) - columns.begin();
            sqlite3_value* const value = change.after(static_cast<int>(at));
            if (value && sqlite3_value_type(value) != SQLITE_NULL)
                database.run(drop, sqlite3_value_int64(change.key(0)));
        }
}

} // namespace

void apply(Database& database, const Changeset& changes)
{
    Transaction transaction(database);
    database.exec("PRAGMA defer_foreign_keys = ON"); // until the end of the transaction
    Prepared prepared(database);
    freePaths(database, changes);
    // Rows are removed last: what was moved out of them, or comes back, must not go by cascade.
    for (const auto operation : {Operation::insert, Operation::update, Operation::remove})
        for (ChangeIterator change(changes); change.next();) {
            if (change.operation() != operation)
                continue;
            const auto replay = replayOf(change, prepared.columnsOf(change.table()));
            auto& statement = prepared.statement(replay.sql);
            statement.bindValues(replay.values);
            statement.run();
        }
    dropLostReferences(database, prepared, changes);
    transaction.commit();
}

} // namespace korvo
