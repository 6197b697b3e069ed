#include "catalog/sql/Statement.h"

#include <cerrno>

namespace korvo {

namespace {

/// Whether the disk has failed to give what a file holds.
bool isUnreadable(sqlite3_file* file)
{
    int reason = 0; // of the last call that failed
    if (file && file->pMethods)
        file->pMethods->xFileControl(file, SQLITE_FCNTL_LAST_ERRNO, &reason);
    return reason == EIO || reason == ENXIO;
}

/// SQLite calls a library damaged, too, that its disk does not give out.
int codeOf(sqlite3* connection)
{
    const int code = sqlite3_errcode(connection);
    if ((code & 0xff) == SQLITE_CORRUPT)
        for (const int which : {SQLITE_FCNTL_FILE_POINTER, SQLITE_FCNTL_JOURNAL_POINTER}) {
            sqlite3_file* file = nullptr;
            sqlite3_file_control(connection, "main", which, static_cast<void*>(&file));
            if (isUnreadable(file))
                return SQLITE_IOERR_CORRUPTFS;
        }
    return code;
}

} // namespace

void throwFailure(sqlite3* connection, std::string_view sql, DatabaseError::Case which)
{
    const int code = codeOf(connection);
    const std::string message
        = code == SQLITE_IOERR_CORRUPTFS ? sqlite3_errstr(code) : sqlite3_errmsg(connection);
    throw which == DatabaseError::Case::prepare ? DatabaseError::prepare(message, std::string(sql), code)
                                                : DatabaseError::step(message, std::string(sql), code);
}

Statement::Statement(sqlite3* connection, StatementHandle handle, StatementCache* cache)
    : lock_(connection), handle_(std::move(handle)), cache_(cache)
{ }

Statement::~Statement()
{
    if (!cache_ || !handle_)
        return;
    sqlite3_reset(handle_.get());
    sqlite3_clear_bindings(handle_.get());
    cache_->try_emplace(sqlite3_sql(handle_.get()), std::move(handle_));
}

void Statement::bindValues(const std::vector<sqlite3_value*>& values)
{
    sqlite3_reset(handle_.get());
    for (int index = 0; index < static_cast<int>(values.size()); ++index)
        check(sqlite3_bind_value(handle_.get(), index + 1, values[static_cast<std::size_t>(index)]));
}

bool Statement::step()
{
    switch (sqlite3_step(handle_.get())) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    default:
        fail();
    }
}

void Statement::run()
{
    if (step())
        throw DatabaseError::step("unexpected row", sqlite3_sql(handle_.get()));
    sqlite3_reset(handle_.get());
}

int Statement::column(std::string_view name) const
{
    for (int index = 0; index < sqlite3_column_count(handle_.get()); ++index)
        if (name == sqlite3_column_name(handle_.get(), index))
            return index;
    throw DatabaseError::prepare("no such column: " + std::string(name), sqlite3_sql(handle_.get()));
}

Row Statement::row() const
{
    Row row;
    for (int column = 0; column < sqlite3_column_count(handle_.get()); ++column) {
        const char* const name = sqlite3_column_name(handle_.get(), column);
        switch (sqlite3_column_type(handle_.get(), column)) {
        case SQLITE_INTEGER:
            row[name] = integer(column);
            break;
        case SQLITE_FLOAT:
            row[name] = real(column);
            break;
        case SQLITE_TEXT:
            row[name] = std::string(text(column));
            break;
        case SQLITE_BLOB: {
            const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(handle_.get(), column));
            row[name] = std::vector<std::uint8_t>(bytes, bytes + sqlite3_column_bytes(handle_.get(), column));
            break;
        }
        default: // NULL is absent
            break;
        }
    }
    return row;
}

void Statement::check(int code) const
{
    if (code != SQLITE_OK)
        fail();
}

void Statement::fail() const
{
    throwFailure(sqlite3_db_handle(handle_.get()), sqlite3_sql(handle_.get()));
}

} // namespace korvo
