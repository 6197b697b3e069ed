#include "catalog/sql/DatabaseError.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>

namespace korvo {

namespace {

struct Trouble {
    int code;
    const char* what;
    const char* toDo;
};

constexpr std::array<Trouble, 9> troubles{{
    {SQLITE_BUSY, "Something else is writing to this library.", "Try again when it is done."},
    {SQLITE_LOCKED, "Something else is writing to this library.", "Try again when it is done."},
    {SQLITE_FULL, "The library's disk is full.", "Free some space there, then try again."},
    {SQLITE_READONLY, "The library cannot be written.",
        "Make its disk, its folder and its files writable, then try again."},
    {SQLITE_IOERR, "The library's disk cannot be read or written.",
        "See that it is connected and sound, then try again."},
    {SQLITE_CANTOPEN, "The library's files cannot be opened.",
        "See that its disk is connected and that you may read and write its folder, then try again."},
    {SQLITE_NOMEM, "There is too little memory.", "Close other programs, then try again."},
    {SQLITE_CORRUPT, "The library is damaged.",
        "Close it and put the newest copy from its folder Backups in the place of its catalog.sqlite."},
    {SQLITE_NOTADB, "The library's catalog.sqlite is no catalog.",
        "Choose another folder, or put the newest copy from its folder Backups in the place of it."},
}};

/// Null for what only the program's developers can mend.
const Trouble* troubleOf(const DatabaseError& error)
{
    const auto* const found = std::ranges::find(troubles, error.primaryCode(), &Trouble::code);
    return found == troubles.end() ? nullptr : found;
}

} // namespace

bool DatabaseError::mayPass() const
{
    return troubleOf(*this) != nullptr;
}

std::string DatabaseError::textForUser() const
{
    const auto* const trouble = troubleOf(*this);
    if (!trouble || (which_ != Case::open && sql_.empty())) // the latter says all by itself
        return what();
    return (which_ == Case::open ? what() + std::string(".") : trouble->what) + " " + trouble->toDo;
}

DatabaseError DatabaseError::open(const std::string& message, int code)
{
    return {Case::open, message, {}, code, "Couldn't open library: " + message};
}

DatabaseError DatabaseError::prepare(const std::string& message, const std::string& sql, int code)
{
    return {Case::prepare, message, sql, code, "Catalog error: " + message + " [" + sql + "]"};
}

DatabaseError DatabaseError::step(const std::string& message, const std::string& sql, int code)
{
    return {Case::step, message, sql, code, "Catalog error: " + message + " [" + sql + "]"};
}

DatabaseError DatabaseError::outdated(
    const std::string& title, const std::string& done, const DatabaseError& failed)
{
    return {Case::step, failed.message(), failed.sql(), failed.code(),
        "\"" + title + "\" cannot be " + done + ": the library has changed since."};
}

DatabaseError DatabaseError::occupied(const std::string& title)
{
    return {Case::occupied, sqlite3_errstr(SQLITE_BUSY), {}, SQLITE_BUSY,
        "“" + title + "” is not done yet. Try again when it is."};
}

} // namespace korvo
