#include "catalog/Meta.h"

namespace korvo {

std::optional<std::string> readMeta(Database& database, std::string_view key)
{
    auto statement = database.kept("SELECT value FROM meta WHERE key = ?");
    statement.bind(key);
    return statement.step() ? std::optional(std::string(statement.text(0))) : std::nullopt;
}

void writeMeta(Database& database, std::string_view key, std::string_view value)
{
    database.run(
        "INSERT INTO meta (key, value) VALUES (?, ?) ON CONFLICT(key) DO UPDATE SET value = excluded.value",
        key, value);
}

void createMeta(Database& database)
{
    database.exec("CREATE TABLE IF NOT EXISTS meta (key TEXT PRIMARY KEY, value TEXT NOT NULL)");
}

} // namespace korvo
