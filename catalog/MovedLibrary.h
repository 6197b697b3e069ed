#pragma once

#include "catalog/sql/Database.h"

#include <filesystem>

namespace korvo {

/// When the library folder was elsewhere at the last open, moves the catalog's paths that lay inside the old
/// folder to the new one, all in one transaction, and remembers the new place. Throws DatabaseError.
void repairMovedPaths(Database& database, const std::filesystem::path& libraryFolder);

} // namespace korvo
