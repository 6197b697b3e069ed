#pragma once

#include "base/Dates.h"
#include "catalog/sql/Database.h"

#include <filesystem>

namespace korvo {

/// Keeps dated copies of the catalog in `folder`: one a day, the seven newest. A copy is whole or absent: it
/// is made under another name and moved into place. Never throws: a library that cannot be backed up still
/// opens.
void backUpDaily(Database& database, const std::filesystem::path& folder, UnixTime now) noexcept;

} // namespace korvo
