#include "catalog/Catalog.h"

#include "catalog/Backup.h"
#include "catalog/Migration.h"
#include "catalog/MovedLibrary.h"
#include "catalog/Stacks.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace korvo {

namespace {

/// Refuses what this program must not touch, before anything is made or changed. A log beside the catalog may
/// hold its last state, and is looked through.
void refuseForeignFile(const std::filesystem::path& file)
{
    if (!std::filesystem::exists(file))
        return;
    auto log = file;
    log += "-wal";
    try {
        auto database
            = std::filesystem::exists(log) ? Database::openForALook(file) : Database::openReadOnly(file);
        refuseNewerSchema(database);
    } catch (const DatabaseError& error) {
        throw error.which() == DatabaseError::Case::open ? error
                                                         : DatabaseError::open(error.message(), error.code());
    }
}

std::filesystem::path prepareFolder(const std::filesystem::path& folder)
{
    try {
        refuseForeignFile(folder / "catalog.sqlite");
        std::filesystem::create_directories(folder / "Previews");
        if (::access(folder.c_str(), W_OK) != 0) // SQLite would fail, and not say why
            throw DatabaseError::open(std::generic_category().message(errno) + " (" + folder.string() + ")");
        return std::filesystem::canonical(folder);
    } catch (const std::filesystem::filesystem_error& error) {
        throw DatabaseError::open(error.code().message() + " (" + error.path1().string() + ")");
    }
}

} // namespace

Catalog::Catalog(const std::filesystem::path& folder, const Clock& clock)
    : folder_(prepareFolder(folder)), database_(folder_ / "catalog.sqlite")
{
    backUpDaily(database_, backupsFolder(), clock.now());
    migrate(database_);
    repairMovedPaths(database_, folder_);
    repairOldStacks(database_);
}

Catalog::Catalog(std::filesystem::path folder, Database database)
    : folder_(std::move(folder)), database_(std::move(database))
{ }

Catalog Catalog::beside() const
{
    int hasMoved = 0; // then another library may stand in its place
    sqlite3_file_control(database_.handle(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    if (hasMoved != 0)
        throw DatabaseError::open(sqlite3_errstr(SQLITE_CANTOPEN), SQLITE_CANTOPEN);
    Catalog catalog(folder_, Database::openExisting(folder_ / "catalog.sqlite"));
    catalog.database_.exec(
        "PRAGMA cache_size = -65536"); // KiB: what changes many rows needs most pages twice
    return catalog;
}

} // namespace korvo
