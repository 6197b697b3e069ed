#pragma once

#include "catalog/Catalog.h"

namespace korvo {

// Over a connection to the library, as many photos take long.

/// Follows an added folder that was moved or renamed on disk, with all folders and photos whose paths lie in
/// it. `place` is a path as the library keeps it, absolute and without links. Throws NotFoundError, and
/// std::invalid_argument when something is in the library there already.
void folderMoved(Database& database, std::int64_t id, std::string_view place);

struct FolderMove {
    std::string from, to;
    std::size_t photos; // whose paths change
};

/// What it would be for a folder that someone names; looks at the disk and changes nothing. Throws
/// NotFoundError, and std::runtime_error when it is no folder, or none of the photos is found in it.
FolderMove findFolder(Database& database, std::int64_t id, const std::filesystem::path& folder);

} // namespace korvo
