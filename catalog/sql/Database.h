#pragma once

#include "catalog/sql/Statement.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace korvo {

/// One open SQLite connection, closed when it is released. It may be used from several threads: each
/// operation holds the connection's own recursive mutex for as long as it lasts (see Statement and
/// Transaction).
class Database {
public:
    /// How long a locked database is waited for.
    static constexpr std::chrono::milliseconds busyPatience{5000};

    /// Opens or creates the file read-write, with a write-ahead log and foreign keys on. A locked database is
    /// waited for, 5 s at most, here and in every later call. Throws DatabaseError (open, step).
    explicit Database(const std::filesystem::path& file);

    /// The same of a file that must be there already.
    static Database openExisting(const std::filesystem::path& file);

    /// Opens a file strictly for reading and leaves no trace beside it, not even SQLite's own companions.
    /// Changes that others make meanwhile, and those in a write-ahead log, are not seen; nothing that the
    /// file's schema defines is run. Throws DatabaseError.
    static Database openReadOnly(const std::filesystem::path& file);

    /// Opens a file for a look through its write-ahead log, which is neither written back nor removed when
    /// the connection closes. Throws DatabaseError (open).
    static Database openForALook(const std::filesystem::path& file);

    /// Runs one or more statements. Throws DatabaseError (step).
    void exec(const std::string& sql);

    /// A statement prepared for this use alone. Throws DatabaseError (prepare).
    Statement prepare(std::string_view sql);

    /// A statement that is prepared at its first use and kept for the next: for texts that do not vary.
    /// Throws DatabaseError (prepare).
    Statement kept(std::string_view sql);

    /// Runs a kept statement to its end. Text and blob arguments are borrowed for the call. Throws
    /// DatabaseError.
    template <typename... Args>
    void run(std::string_view sql, const Args&... args)
    {
        auto statement = kept(sql);
        statement.bind(args...);
        statement.run();
    }

    /// Runs a kept INSERT and returns the id of its row, or that of the last row inserted before it if it was
    /// ignored. Throws DatabaseError.
    template <typename... Args>
    std::int64_t insert(std::string_view sql, const Args&... args)
    {
        auto statement = kept(sql);
        statement.bind(args...);
        statement.run();
        return sqlite3_last_insert_rowid(handle());
    }

    /// All rows of a small result, as maps by column name. Throws DatabaseError.
    template <typename... Args>
    std::vector<Row> query(std::string_view sql, const Args&... args)
    {
        auto statement = prepare(sql);
        statement.bind(args...);
        std::vector<Row> rows;
        while (statement.step())
            rows.push_back(statement.row());
        return rows;
    }

    /// The first column of the first row as an integer; 0 when there is no row. Throws DatabaseError.
    template <typename... Args>
    std::int64_t scalar(std::string_view sql, const Args&... args)
    {
        auto statement = kept(sql);
        statement.bind(args...);
        return statement.step() ? statement.integer(0) : 0;
    }

    /// The names of a table's columns, in order. Throws DatabaseError.
    std::vector<std::string> columnsOf(std::string_view table);

    /// The number of rows changed by the statement that ran last.
    std::int64_t changes() const { return sqlite3_changes64(handle()); }

    /// The raw connection, for SQLite's own facilities (backup, change recording).
    sqlite3* handle() const { return handle_.get(); }

private:
    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };

    explicit Database(const std::string& name, int flags);
    void useWriteAheadLog();
    void distrustSchema();

    std::unique_ptr<sqlite3, Close> handle_;
    StatementCache kept_; // before the handle in destruction, so that nothing keeps the connection open
};

/// While it lives, what is locked by others fails at once. Whoever makes it holds the connection, or is the
/// only one that uses it.
class WithoutWaiting {
public:
    explicit WithoutWaiting(Database& database);
    ~WithoutWaiting();
    WithoutWaiting(const WithoutWaiting&) = delete;
    WithoutWaiting& operator=(const WithoutWaiting&) = delete;

private:
    Database& database_;
};

/// A change of several statements that happens as a whole or not at all: what is not committed when the
/// transaction goes is rolled back. It holds the connection for its life, so keep it short. A transaction
/// inside another is a part of it that can be rolled back alone. Not to be begun while the same thread reads
/// by a Statement: it would keep the connection from others all the same.
class Transaction {
public:
    /// Takes the write lock at once, waiting so long for other processes. Other threads may use the
    /// connection while it waits. Throws DatabaseError (step).
    explicit Transaction(Database& database, std::chrono::milliseconds patience = Database::busyPatience);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Throws DatabaseError (step); the transaction is then still open and will be rolled back.
    void commit();

private:
    bool tryToBegin();

    Database& database_;
    std::optional<ConnectionLock> lock_;
    bool nested_ = false;
    bool open_ = true;
};

/// Lives in a transaction that may take long. What this process writes itself is no reason to give up: a
/// transaction of another of its connections that waits as long as busyPatience waits for the end of it.
class LongWrite {
public:
    LongWrite() { ++count(); }
    ~LongWrite() { --count(); }
    LongWrite(const LongWrite&) = delete;
    LongWrite& operator=(const LongWrite&) = delete;

    static bool isAny() { return count() > 0; }

private:
    static std::atomic<int>& count();
};

/// Runs a kept statement as a Transaction of its own: by itself it would hold the connection while it waits
/// for another process. Throws DatabaseError.
template <typename... Args>
void runAlone(Database& database, std::string_view sql, const Args&... args)
{
    Transaction transaction(database);
    database.run(sql, args...);
    transaction.commit();
}

} // namespace korvo
