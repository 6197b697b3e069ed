#pragma once

#include "catalog/sql/Database.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

struct sqlite3_session;

namespace korvo {

/// What happened to the catalog between two moments: every row that was made, changed or removed, those that
/// went by cascade included. It can be taken back and done again (SQLite's session extension).
class Changeset {
public:
    Changeset() = default;
    explicit Changeset(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) { }

    bool empty() const { return bytes_.empty(); }
    const std::vector<std::uint8_t>& bytes() const { return bytes_; }

    /// The changeset that takes this one back. Throws DatabaseError.
    Changeset inverted() const;

private:
    std::vector<std::uint8_t> bytes_;
};

/// What a changeset touches, for telling the views.
struct ChangedRows {
    std::vector<std::int64_t> inserted; // ids of `photos`
    std::vector<std::int64_t> updated;
    std::vector<std::int64_t> deleted;
    std::set<std::string, std::less<>> photoColumns; // whose values an update of `photos` changed
    std::set<std::int64_t> albums; // whose members changed
    std::set<std::int64_t> smartAlbums; // that were made, deleted, or changed but for their place
    std::set<std::int64_t> stackIDs; // that were made, changed or deleted, or whose members changed
    bool stacks = false; // one of these
    bool tree = false; // a folder, project, album, keyword or person changed
};

/// Adds what `more` touches, each row once.
void merge(ChangedRows& rows, const ChangedRows& more);

/// Reads what a changeset touches. Throws DatabaseError.
ChangedRows changedRows(Database& database, const Changeset& changes);

/// Records the changes made to the library's content through one connection, from its making on. Made and
/// finished inside a transaction, so that it records that transaction alone.
class ChangeRecorder {
public:
    /// Throws DatabaseError.
    explicit ChangeRecorder(Database& database);

    /// What has changed so far; empty if nothing has. Throws DatabaseError.
    Changeset changes() const;

private:
    struct Delete {
        void operator()(sqlite3_session* session) const;
    };
    std::unique_ptr<sqlite3_session, Delete> session_;
};

/// Makes the changes of a changeset in a transaction of their own. What others have changed since gives way
/// where the changeset has a value for it; rows that are gone are passed over, and a photo that comes back to
/// a stack, project or folder that is gone comes back without it. Throws DatabaseError, with nothing done,
/// when the changes cannot stand beside what is there now, such as a removed photo whose file was added
/// again.
void apply(Database& database, const Changeset& changes);

} // namespace korvo
