#pragma once

#include <stdexcept>
#include <string>

namespace korvo {

/// A failure of the catalog's database. what() is the text for the user.
class DatabaseError : public std::runtime_error {
public:
    enum class Case { open, prepare, step };

    /// The library could not be opened.
    static DatabaseError open(const std::string& message);
    /// A statement could not be compiled.
    static DatabaseError prepare(const std::string& message, const std::string& sql);
    /// A statement failed when it ran.
    static DatabaseError step(const std::string& message, const std::string& sql);

    Case which() const { return which_; }
    /// SQLite's own message.
    const std::string& message() const { return message_; }
    /// The statement; empty for a failed open.
    const std::string& sql() const { return sql_; }

private:
    DatabaseError(Case which, std::string message, std::string sql, const std::string& description)
        : std::runtime_error(description), which_(which), message_(std::move(message)), sql_(std::move(sql))
    { }

    Case which_;
    std::string message_;
    std::string sql_;
};

} // namespace korvo
