#pragma once

#include "base/Text.h"
#include "catalog/Catalog.h"

#include <algorithm>

namespace korvo {

/// Runs a statement that is to change the row of an id. Throws NotFoundError when there is none.
template <typename... Args>
void changeRow(
    Database& database, std::string_view noun, std::int64_t id, std::string_view sql, const Args&... args)
{
    const ConnectionLock lock(database.handle());
    database.run(sql, args...);
    if (database.changes() == 0)
        throw NotFoundError(noun, id);
}

/// Runs one statement for each photo, all of them in one transaction. `bind` is given the statement and an
/// id.
template <typename Bind>
void changeEach(Database& database, std::string_view sql, std::span<const PhotoID> ids, Bind bind)
{
    std::vector<PhotoID> inOrder(ids.begin(), ids.end()); // as the rows lie
    std::sort(inOrder.begin(), inOrder.end());
    Transaction transaction(database);
    {
        auto statement = database.kept(sql);
        for (const PhotoID id : inOrder) {
            bind(statement, id);
            statement.run();
        }
    }
    transaction.commit();
}

/// Throws NotFoundError when a project that a row is about to refer to does not exist.
inline void requireProject(Database& database, std::optional<std::int64_t> id)
{
    if (id && database.scalar("SELECT COUNT(*) FROM projects WHERE id = ?", *id) == 0)
        throw NotFoundError("project", *id);
}

/// What the user is to find again by its name needs one. Throws std::invalid_argument.
inline void requireName(std::string_view name)
{
    if (isBlank(name))
        throw std::invalid_argument("a name needs more than blanks");
}

/// The catalog knows files by absolute paths: others would mean another file in the next folder. Throws
/// std::invalid_argument.
inline void requireAbsolute(std::string_view path)
{
    if (!std::filesystem::path(path).is_absolute())
        throw std::invalid_argument("\"" + std::string(path) + "\" is not an absolute path");
}

} // namespace korvo
