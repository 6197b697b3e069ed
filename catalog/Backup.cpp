#include "catalog/Backup.h"

#include "platform/PartFile.h"

#include <algorithm>
#include <string>
#include <vector>

namespace korvo {

namespace {

constexpr std::size_t copiesKept = 7;
constexpr std::string_view backupStart = "catalog-";

bool isBackupName(const std::string& name)
{
    return name.starts_with(backupStart) && name.ends_with(".sqlite");
}

/// SQLite's own online copy into an empty file: whole even while another process writes.
void copyDatabase(Database& source, const std::filesystem::path& file)
{
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> target(opened, sqlite3_close);
    if (code != SQLITE_OK)
        throw DatabaseError::open(opened ? sqlite3_errmsg(opened) : "unknown");
    // A copy that is broken off is thrown away; its journal would stay for ever.
    sqlite3_exec(opened, "PRAGMA journal_mode=OFF", nullptr, nullptr, nullptr);
    const ConnectionLock lock(source.handle());
    sqlite3_backup* const backup = sqlite3_backup_init(opened, "main", source.handle(), "main");
    const int stepped = backup ? sqlite3_backup_step(backup, -1) : SQLITE_ERROR;
    sqlite3_backup_finish(backup);
    if (stepped != SQLITE_DONE)
        throw DatabaseError::step(sqlite3_errmsg(opened), "backup");
}

void prune(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (isBackupName(entry.path().filename().string()))
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    for (std::size_t i = 0; i + copiesKept < names.size(); ++i)
        std::filesystem::remove(folder / names[i]);
}

} // namespace

void backUpDaily(Database& database, const std::filesystem::path& folder, UnixTime now) noexcept
try {
    std::filesystem::create_directories(folder);
    const auto file = folder / (std::string(backupStart) + localDay(now) + ".sqlite");
    if (std::filesystem::exists(file))
        return;
    PartFile::removeLeftOvers(folder / backupStart);
    try {
        const WithoutWaiting impatient(database); // a reader in another process must not hold up the opening
        database.exec("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const DatabaseError&) {
        // Another process reads the log just now; the copy is made through the log and misses nothing.
    }
    auto unfinished = PartFile::begin(file);
    if (!unfinished)
        return; // another process, which opened the day's first library too, makes it
    copyDatabase(database, unfinished->path());
    unfinished->install();
    prune(folder);
} catch (const std::exception&) {
    // A library that cannot be backed up still opens; the health check reports when backups are missing.
}

} // namespace korvo
