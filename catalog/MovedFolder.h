#pragma once

#include "catalog/Catalog.h"

namespace korvo {

/// Follows an added folder that was moved or renamed on disk, with all folders and photos whose paths lie in
/// it. `place` is a path as the library keeps it, absolute and without links. Throws NotFoundError, and
/// std::invalid_argument when something is in the library there already.
void folderMoved(Catalog& catalog, std::int64_t id, std::string_view place);

/// The same for a folder that someone names. Throws also std::runtime_error when it is no folder, or none of
/// the photos is found in it.
void locateFolder(Catalog& catalog, std::int64_t id, const std::filesystem::path& folder);

} // namespace korvo
