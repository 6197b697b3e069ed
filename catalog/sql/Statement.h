#pragma once

#include "catalog/sql/DatabaseError.h"

#include <sqlite3.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace korvo {

/// A value of a result by SQLite's storage class.
using Value = std::variant<std::int64_t, double, std::string, std::vector<std::uint8_t>>;

/// A row of a small result, by column name. A NULL column is absent.
using Row = std::map<std::string, Value, std::less<>>;

/// Holds a connection's own recursive mutex. Serialised mode protects single calls only; the error message,
/// the row and the last row id that belong to a call are safe while this is held.
class ConnectionLock {
public:
    explicit ConnectionLock(sqlite3* handle) : mutex_(sqlite3_db_mutex(handle))
    {
        sqlite3_mutex_enter(mutex_);
    }
    ~ConnectionLock() { sqlite3_mutex_leave(mutex_); }
    ConnectionLock(const ConnectionLock&) = delete;
    ConnectionLock& operator=(const ConnectionLock&) = delete;

private:
    sqlite3_mutex* mutex_;
};

/// Throws what made the last call on this connection fail. It must have been held since.
[[noreturn]] void throwFailure(
    sqlite3* connection, std::string_view sql, DatabaseError::Case which = DatabaseError::Case::step);

struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

/// Statements that wait, reset, for their next use, by their text, which they hold themselves.
using StatementCache = std::unordered_map<std::string_view, StatementHandle>;

/// A prepared statement in use. It holds the connection until it goes; then it is finalized, or put back
/// where kept statements wait.
class Statement {
public:
    /// Used by Database. `cache` is null for a statement that is not kept.
    Statement(sqlite3* connection, StatementHandle handle, StatementCache* cache);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    /// Binds all parameters in order. Text and blobs are borrowed until the statement is run, bound again or
    /// gone.
    template <typename... Args>
    void bind(const Args&... args)
    {
        sqlite3_reset(handle_.get());
        int index = 0;
        (bindOne(++index, args), ...);
    }

    /// Binds copies of values that SQLite handed out.
    void bindValues(const std::vector<sqlite3_value*>& values);

    /// True with the next row, false at the end. Throws DatabaseError (step).
    bool step();

    /// Runs to the end a statement that returns no rows, ready to be bound and run again. Throws
    /// DatabaseError (step), also when there was a row.
    void run();

    bool isNull(int column) const { return sqlite3_column_type(handle_.get(), column) == SQLITE_NULL; }
    std::int64_t integer(int column) const { return sqlite3_value_int64(value(column)); }
    double real(int column) const { return sqlite3_value_double(value(column)); }
    /// Valid until the next step. Empty for NULL.
    std::string_view text(int column) const
    {
        sqlite3_value* const it = value(column);
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(it));
        return bytes ? std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(it)))
                     : std::string_view();
    }
    /// Whether the column holds an integer or a float.
    bool isNumber(int column) const
    {
        const int type = sqlite3_column_type(handle_.get(), column);
        return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
    }
    /// Valid until the next step. Empty for NULL.
    std::span<const std::uint8_t> blob(int column) const
    {
        sqlite3_value* const it = value(column);
        const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_value_blob(it));
        return {bytes, bytes ? static_cast<std::size_t>(sqlite3_value_bytes(it)) : 0};
    }
    std::optional<std::int64_t> optionalInteger(int column) const
    {
        sqlite3_value* const it = value(column);
        return sqlite3_value_type(it) == SQLITE_NULL ? std::nullopt : std::optional(sqlite3_value_int64(it));
    }
    std::optional<double> optionalReal(int column) const
    {
        sqlite3_value* const it = value(column);
        return sqlite3_value_type(it) == SQLITE_NULL ? std::nullopt : std::optional(sqlite3_value_double(it));
    }
    /// The index of a result column. Throws DatabaseError (prepare) when there is none of that name.
    int column(std::string_view name) const;
    /// The current row by column name.
    Row row() const;

private:
    /// One call that locks, instead of one each for a column's type, text and length: the connection is held
    /// anyway, which makes the value safe to read.
    sqlite3_value* value(int column) const { return sqlite3_column_value(handle_.get(), column); }

    void bindOne(int index, std::nullptr_t) { check(sqlite3_bind_null(handle_.get(), index)); }
    void bindOne(int index, std::nullopt_t) { check(sqlite3_bind_null(handle_.get(), index)); }
    void bindOne(int index, double value) { check(sqlite3_bind_double(handle_.get(), index, value)); }
    template <std::integral T>
    void bindOne(int index, T value)
    {
        check(sqlite3_bind_int64(handle_.get(), index, static_cast<std::int64_t>(value)));
    }
    void bindOne(int index, std::string_view text)
    {
        // SQLite takes a null pointer for NULL, and an empty view may hold one.
        const char* const bytes = text.data() ? text.data() : "";
        check(sqlite3_bind_text64(handle_.get(), index, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8));
    }
    void bindOne(int index, const std::string& text) { bindOne(index, std::string_view(text)); }
    void bindOne(int index, const char* text) { bindOne(index, std::string_view(text)); }
    void bindOne(int index, std::span<const std::uint8_t> blob)
    {
        check(sqlite3_bind_blob64(handle_.get(), index, blob.data(), blob.size(), SQLITE_STATIC));
    }
    template <typename T>
    void bindOne(int index, const std::optional<T>& value)
    {
        value ? bindOne(index, *value) : bindOne(index, nullptr);
    }

    void check(int code) const;
    [[noreturn]] void fail() const;

    ConnectionLock lock_;
    StatementHandle handle_;
    StatementCache* cache_;
};

} // namespace korvo
