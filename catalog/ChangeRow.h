#pragma once

#include "catalog/Catalog.h"

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

} // namespace korvo
