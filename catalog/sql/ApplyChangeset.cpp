#include "catalog/sql/ChangeIterator.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <unordered_map>

namespace korvo {

namespace {

using Operation = ChangeIterator::Operation;

/// A reference of a row that its table can do without.
struct Reference {
    std::string_view table, column;
    const char* isThere; // looks for its target; none where the row itself has to be looked at
    const char* drop; // takes it from a row whose target is gone
};
constexpr Reference looseReferences[] = {
    {"photos", "stack_id", "SELECT COUNT(*) FROM stacks WHERE id = ?",
        "UPDATE photos SET stack_id = NULL WHERE id = ?"},
    {"photos", "project_id", "SELECT COUNT(*) FROM projects WHERE id = ?",
        "UPDATE photos SET project_id = NULL WHERE id = ?"},
    {"photos", "folder_id", "SELECT COUNT(*) FROM folders WHERE id = ?",
        "UPDATE photos SET folder_id = NULL WHERE id = ?"},
    {"albums", "parent_id", "SELECT COUNT(*) FROM projects WHERE id = ?",
        "UPDATE albums SET parent_id = NULL WHERE id = ?"},
    // others may have put the one that it comes back to into it
    {"projects", "parent_id", nullptr,
        "UPDATE projects SET parent_id = NULL WHERE id = ?1 AND (parent_id NOT IN (SELECT id FROM projects) "
        "OR ?1 IN (WITH RECURSIVE above(id) AS (SELECT parent_id FROM projects WHERE id = ?1 "
        "UNION SELECT parent_id FROM projects JOIN above USING (id)) SELECT id FROM above))"},
};

/// What a replay needs to know of a table.
struct Table {
    std::string name;
    std::vector<std::string> columns;
    std::vector<std::pair<int, const Reference*>> references; // by column
    std::string insertion; // the text of a statement

    Table(Database& database, const ChangeIterator& change)
        : name(change.table()), columns(database.columnsOf(name)),
          insertion("INSERT INTO " + name + " VALUES (?")
    {
        for (int column = 1; column < change.columnCount(); ++column)
            insertion += ", ?";
        insertion += ")";
        for (const auto& reference : looseReferences)
            if (reference.table == name)
                references.emplace_back(
                    std::find(columns.begin(), columns.end(), reference.column) - columns.begin(),
                    &reference);
    }
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

void addKey(Replay& replay, const ChangeIterator& change, const Table& table)
{
    replay.sql += " WHERE ";
    Replay key;
    for (int column = 0; column < change.columnCount(); ++column)
        if (change.isKey(column))
            key.add(" AND ", table.columns[static_cast<std::size_t>(column)] + " IS ?", change.key(column));
    replay.sql += key.sql;
    replay.values.insert(replay.values.end(), key.values.begin(), key.values.end());
}

Replay replayOf(const ChangeIterator& change, const Table& table)
{
    Replay replay;
    switch (change.operation()) {
    case Operation::insert:
        replay.sql = table.insertion;
        for (int column = 0; column < change.columnCount(); ++column)
            replay.values.push_back(change.after(column));
        break;
    case Operation::update:
        replay.sql = "UPDATE " + table.name + " SET ";
        for (int column = 0; column < change.columnCount(); ++column)
            if (sqlite3_value* const value = change.after(column))
                replay.add(", ", table.columns[static_cast<std::size_t>(column)] + " = ?", value);
        addKey(replay, change, table);
        break;
    case Operation::remove:
        replay.sql = "DELETE FROM " + table.name;
        addKey(replay, change, table);
        break;
    }
    return replay;
}

/// Makes changes again, one by one. Their statements' texts vary with the columns that changed, so that none
/// of them is worth keeping for another replay.
class Replayer {
public:
    explicit Replayer(Database& database) : database_(database) { }

    void make(const ChangeIterator& change)
    {
        const auto& table = tableOf(change);
        const auto replay = replayOf(change, table);
        auto& made = statements_[replay.sql];
        if (!made)
            made.reset(new Statement(database_.prepare(replay.sql))); // it cannot be moved
        made->bindValues(replay.values);
        made->run();
        if (change.operation() != Operation::remove)
            noteReferences(change, table);
    }

    /// Takes from rows that came back what they referred to and others have deleted meanwhile.
    void dropLostReferences()
    {
        std::map<std::pair<const Reference*, std::int64_t>, bool> lost;
        for (const auto& [reference, target, id] : references_) {
            const auto [known, isNew] = lost.try_emplace({reference, target});
            if (isNew)
                known->second = !reference->isThere || database_.scalar(reference->isThere, target) == 0;
            if (known->second)
                database_.run(reference->drop, id);
        }
    }

private:
    struct Referring {
        const Reference* reference;
        std::int64_t target, id;
    };

    const Table& tableOf(const ChangeIterator& change)
    {
        const auto known = tables_.find(change.table());
        return known != tables_.end()
            ? known->second
            : tables_.try_emplace(std::string(change.table()), database_, change).first->second;
    }

    void noteReferences(const ChangeIterator& change, const Table& table)
    {
        for (const auto& [column, reference] : table.references)
            if (sqlite3_value* const value = change.after(column);
                value && sqlite3_value_type(value) != SQLITE_NULL)
                references_.push_back(
                    {reference, sqlite3_value_int64(value), sqlite3_value_int64(change.key(0))});
    }

    Database& database_;
    std::map<std::string, Table, std::less<>> tables_;
    std::unordered_map<std::string, std::unique_ptr<Statement>> statements_;
    std::vector<Referring> references_;
};

/// Gives the photos and folders that get another path, or go, a path that nothing else has, so that two of
/// them may change places and one may come back where another goes. Returns what kinds of changes there are.
std::set<Operation> freePaths(Database& database, const Changeset& changes)
{
    constexpr int folderPath = 1;
    constexpr int photoPath = 2;
    std::set<Operation> kinds;
    for (ChangeIterator change(changes); change.next();) {
        kinds.insert(change.operation());
        const bool isPhoto = change.table() == "photos";
        if (change.operation() == Operation::insert || (!isPhoto && change.table() != "folders"))
            continue;
        if (change.operation() == Operation::update && !change.after(isPhoto ? photoPath : folderPath))
            continue;
        database.run(isPhoto ? "UPDATE photos SET path = 'moving ' || id WHERE id = ?"
                             : "UPDATE folders SET path = 'moving ' || id WHERE id = ?",
            sqlite3_value_int64(change.key(0)));
    }
    return kinds;
}

} // namespace

void apply(Database& database, const Changeset& changes)
{
    Transaction transaction(database);
    database.exec("PRAGMA defer_foreign_keys = ON"); // until the end of the transaction
    const auto kinds = freePaths(database, changes); // reading a changeset to its end takes long
    Replayer replayer(database);
    // Rows are removed last: what was moved out of them, or comes back, must not go by cascade.
    for (const auto kind : {Operation::insert, Operation::update, Operation::remove})
        for (ChangeIterator change(changes); kinds.contains(kind) && change.next();)
            if (change.operation() == kind)
                replayer.make(change);
    replayer.dropLostReferences();
    transaction.commit();
}

} // namespace korvo
