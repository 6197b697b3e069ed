#pragma once

#include "catalog/sql/Database.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// The library's own key/value store, for facts that belong to it and to no row. Both throw DatabaseError.
std::optional<std::string> readMeta(Database& database, std::string_view key);
void writeMeta(Database& database, std::string_view key, std::string_view value);

/// Makes the store where it is missing.
void createMeta(Database& database);

} // namespace korvo
