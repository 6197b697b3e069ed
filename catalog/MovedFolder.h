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
};

/// The same for a folder that someone names. Throws also std::runtime_error when it is no folder, or none of
/// the photos is found in it.
FolderMove locateFolder(Database& database, std::int64_t id, const std::filesystem::path& folder);

} // namespace korvo
