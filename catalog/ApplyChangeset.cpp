#include "catalog/ChangeIterator.h"

#include <map>

namespace korvo {

namespace {

using Operation = ChangeIterator::Operation;
using ColumnNames = std::vector<std::string>;

const ColumnNames& columnsOf(
    Database& database, std::map<std::string, ColumnNames, std::less<>>& known, std::string_view table)
{
    const auto [entry, isNew] = known.try_emplace(std::string(table));
    if (isNew) {
        auto statement = database.kept("SELECT name FROM pragma_table_info(?)");
        statement.bind(table);
        while (statement.step())
            entry->second.emplace_back(statement.text(0));
    }
    return entry->second;
}

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

} // namespace

void apply(Database& database, const Changeset& changes)
{
    Transaction transaction(database);
    database.exec("PRAGMA defer_foreign_keys = ON"); // until the end of the transaction
    std::map<std::string, ColumnNames, std::less<>> columns;
    freePaths(database, changes);
    // Rows are removed last: what was moved out of them, or comes back, must not go by cascade.
    for (const auto operation : {Operation::insert, Operation::update, Operation::remove})
        for (ChangeIterator change(changes); change.next();) {
            if (change.operation() != operation)
                continue;
            const auto replay = replayOf(change, columnsOf(database, columns, change.table()));
            auto statement = database.kept(replay.sql);
            statement.bindValues(replay.values);
            statement.run();
        }
    transaction.commit();
}

} // namespace korvo
