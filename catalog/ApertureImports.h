#pragma once

#include "catalog/sql/Database.h"

#include <filesystem>
#include <string_view>

namespace korvo {

// What came from Aperture libraries, of which the catalog notes each with what identifies it and with where
// it lay.

/// Whether an Aperture library has been imported.
bool hasImported(Database& database, std::string_view identity);
void noteImport(Database& database, std::string_view identity, const std::filesystem::path& bundle);
/// Whether a file lies in an Aperture library, where nothing is ever written: one that was imported, or any
/// folder called so.
bool isReadOnlyOriginal(Database& database, std::string_view path);

} // namespace korvo
