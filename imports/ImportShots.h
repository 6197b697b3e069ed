#pragma once

#include "catalog/Catalog.h"
#include "imports/ImportPlan.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace korvo {

/// The shots of a plan, without the sidecars that stand in the destination beside their photo already: what
/// became of them since is the user's. Throws DatabaseError.
std::vector<Shot> shotsToImport(
    Catalog& catalog, const ImportPlan& plan, const std::filesystem::path& destination);

/// Numbers the shots from 1; those that the import begun last has left, after a kill, a stop or failures, as
/// that one did when both have the same target. Notes what is to be imported, and returns the number of shots
/// that this is a part of. Throws DatabaseError.
std::size_t numberShots(Catalog& catalog, std::vector<Shot>& shots, const std::string& target);

} // namespace korvo
