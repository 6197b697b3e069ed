#pragma once

#include <stdexcept>
#include <string>

namespace korvo {

/// A failure of the catalog's database. what() is the text for the user.
class DatabaseError : public std::runtime_error {
public:
    enum class Case { open, prepare, step };

    /// The library could not be opened.
    static DatabaseError open(const std::string& message, int code = 0);
    /// A statement could not be compiled.
    static DatabaseError prepare(const std::string& message, const std::string& sql, int code = 0);
    /// A statement failed when it ran.
    static DatabaseError step(const std::string& message, const std::string& sql, int code = 0);

    Case which() const { return which_; }
    /// SQLite's result code; 0 when it was not SQLite that failed.
    int code() const { return code_; }
    /// SQLite's own message.
    const std::string& message() const { return message_; }
    /// The statement; empty for a failed open.
    const std::string& sql() const { return sql_; }

private:
    DatabaseError(Case which, std::string message, std::string sql, int code, const std::string& description)
        : std::runtime_error(description), which_(which), code_(code), message_(std::move(message)),
          sql_(std::move(sql))
    { }

    Case which_;
    int code_;
    std::string message_;
    std::string sql_;
};

} // namespace korvo
