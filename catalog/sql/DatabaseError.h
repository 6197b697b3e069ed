#pragma once

#include "base/UserError.h"

namespace korvo {

/// A failure of the catalog's database. what() is the text for the user.
class DatabaseError : public UserError {
public:
    enum class Case { open, prepare, step, occupied };

    /// The library could not be opened.
    static DatabaseError open(const std::string& message, int code = 0);
    /// A statement could not be compiled.
    static DatabaseError prepare(const std::string& message, const std::string& sql, int code = 0);
    /// A statement failed when it ran.
    static DatabaseError step(const std::string& message, const std::string& sql, int code = 0);
    /// What was to be done, "undone", cannot stand beside what is there now. `failed` is what showed it.
    static DatabaseError outdated(
        const std::string& title, const std::string& done, const DatabaseError& failed);
    /// The library is being written by this program itself: "Set Rating" is not over.
    static DatabaseError occupied(const std::string& title);

    Case which() const { return which_; }
    /// SQLite's result code; 0 when it was not SQLite that failed.
    int code() const { return code_; }
    /// The same without its details: SQLITE_IOERR for all failures of a disk.
    int primaryCode() const { return code_ & 0xff; }
    /// Whether it lies in what is around the library and can be mended there: another writer, the disk. What
    /// failed may succeed later then.
    bool mayPass() const;
    /// Without SQL wherever SQLite says what is the matter.
    std::string textForUser() const override;
    /// SQLite's own message.
    const std::string& message() const { return message_; }
    /// The statement; empty for a failed open.
    const std::string& sql() const { return sql_; }

private:
    DatabaseError(Case which, std::string message, std::string sql, int code, const std::string& description)
        : UserError(description), which_(which), code_(code), message_(std::move(message)),
          sql_(std::move(sql))
    { }

    Case which_;
    int code_;
    std::string message_;
    std::string sql_;
};

} // namespace korvo
