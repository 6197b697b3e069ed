#include "catalog/sql/Database.h"

#include <algorithm>
#include <cctype>
#include <thread>

namespace korvo {

namespace {

/// The path as it stands in a URI: all but plain characters are escaped, so that "?", "#", "%" and bytes that
/// are not UTF-8 reach the file system as they are.
std::string uriPath(const std::filesystem::path& path)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string escaped;
    for (const char c : path.native()) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80
            && (std::isalnum(byte) || std::string_view("/-._~").find(c) != std::string_view::npos))
            escaped += c;
        else
            (escaped += '%') += {digits[byte >> 4], digits[byte & 15]};
    }
    return escaped;
}

StatementHandle compile(sqlite3* connection, std::string_view sql)
{
    const ConnectionLock lock(connection);
    sqlite3_stmt* compiled = nullptr;
    if (sqlite3_prepare_v2(connection, sql.data(), static_cast<int>(sql.size()), &compiled, nullptr)
        != SQLITE_OK)
        throwFailure(connection, sql, DatabaseError::Case::prepare);
    return StatementHandle(compiled);
}

} // namespace

Database::Database(const std::string& name, int flags)
{
    // SQLite's count of its memory locks at every allocation, and nobody asks for it. What uses SQLite before
    // this leaves it as it is.
    [[maybe_unused]] static const int uncounted = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(name.c_str(), &opened, flags | SQLITE_OPEN_FULLMUTEX, nullptr);
    handle_.reset(opened);
    if (code != SQLITE_OK)
        throw DatabaseError::open(opened ? sqlite3_errmsg(opened) : "unknown", code);
    sqlite3_busy_timeout(opened, static_cast<int>(busyPatience.count()));
}

Database::Database(const std::filesystem::path& file)
    : Database(std::filesystem::absolute(file).native(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)
{
    useWriteAheadLog();
    exec("PRAGMA foreign_keys = ON");
}

/// Waits here for other processes that open a new catalog: for this change SQLite does not ask its busy
/// handler.
void Database::useWriteAheadLog()
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + busyPatience;
    const auto sql = "PRAGMA journal_mode = WAL";
    while (sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr) == SQLITE_BUSY && Clock::now() < end)
        sqlite3_sleep(1);
    exec(sql);
}

Database Database::openExisting(const std::filesystem::path& file)
{
    Database database(std::filesystem::absolute(file).native(), SQLITE_OPEN_READWRITE);
    database.exec("PRAGMA foreign_keys = ON");
    return database;
}

Database Database::openReadOnly(const std::filesystem::path& file)
{
    const auto uri = "file:" + uriPath(std::filesystem::absolute(file)) + "?mode=ro&immutable=1";
    Database database(uri, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    database.distrustSchema();
    database.exec("PRAGMA foreign_keys = ON");
    return database;
}

/// What others wrote into a file's schema does not run: no views, no triggers, no functions with effects.
void Database::distrustSchema()
{
    const std::pair<int, int> settings[]
        = {{SQLITE_DBCONFIG_DEFENSIVE, 1}, {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
            {SQLITE_DBCONFIG_ENABLE_VIEW, 0}, {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0}};
    for (const auto& [setting, value] : settings)
        sqlite3_db_config(handle(), setting, value, nullptr);
    exec("PRAGMA cell_size_check = ON");
}

Database Database::openForALook(const std::filesystem::path& file)
{
    Database database(std::filesystem::absolute(file).native(), SQLITE_OPEN_READWRITE);
    int keep = 1;
    sqlite3_db_config(database.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    sqlite3_file_control(database.handle(), "main", SQLITE_FCNTL_PERSIST_WAL, &keep);
    return database;
}

void Database::exec(const std::string& sql)
{
    const ConnectionLock lock(handle());
    if (sqlite3_exec(handle(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throwFailure(handle(), sql);
}

Statement Database::prepare(std::string_view sql)
{
    return {handle(), compile(handle(), sql), nullptr};
}

Statement Database::kept(std::string_view sql)
{
    const ConnectionLock lock(handle());
    const auto waiting = kept_.extract(sql); // its key goes with its statement, and is not looked at any more
    return {handle(), waiting.empty() ? compile(handle(), sql) : std::move(waiting.mapped()), &kept_};
}

std::vector<std::string> Database::columnsOf(std::string_view table)
{
    std::vector<std::string> names;
    auto statement = kept("SELECT name FROM pragma_table_info(?)");
    statement.bind(table);
    while (statement.step())
        names.emplace_back(statement.text(0));
    return names;
}

WithoutWaiting::WithoutWaiting(Database& database) : database_(database)
{
    sqlite3_busy_timeout(database_.handle(), 0);
}

WithoutWaiting::~WithoutWaiting()
{
    sqlite3_busy_timeout(database_.handle(), static_cast<int>(Database::busyPatience.count()));
}

Transaction::Transaction(Database& database, std::chrono::milliseconds patience) : database_(database)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds longestPause{20};
    auto end = Clock::now() + patience;
    for (std::chrono::milliseconds pause{1}; !tryToBegin(); pause = std::min(2 * pause, longestPause)) {
        if (patience >= Database::busyPatience && LongWrite::isAny())
            end = Clock::now() + patience;
        if (Clock::now() >= end)
            throw DatabaseError::step(sqlite3_errstr(SQLITE_BUSY), "BEGIN IMMEDIATE", SQLITE_BUSY);
        std::this_thread::sleep_for(pause);
    }
}

/// Lets go of the connection when another process is writing: who reads meanwhile must not wait for it.
bool Transaction::tryToBegin()
try {
    lock_.emplace(database_.handle());
    const WithoutWaiting impatient(database_);
    nested_ = !sqlite3_get_autocommit(database_.handle());
    database_.exec(nested_ ? "SAVEPOINT nested" : "BEGIN IMMEDIATE");
    return true;
} catch (const DatabaseError& error) {
    lock_.reset();
    if (error.primaryCode() != SQLITE_BUSY)
        throw;
    return false;
}

std::atomic<int>& LongWrite::count()
{
    static std::atomic<int> running = 0;
    return running;
}

Transaction::~Transaction()
{
    if (!open_)
        return;
    try {
        database_.exec(nested_ ? "ROLLBACK TO nested; RELEASE nested" : "ROLLBACK");
    } catch (const DatabaseError&) {
        // SQLite has rolled back by itself already, as it does when the disk is full.
    }
}

void Transaction::commit()
{
    database_.exec(nested_ ? "RELEASE nested" : "COMMIT");
    open_ = false;
}

} // namespace korvo
