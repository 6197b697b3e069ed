#pragma once

#include "catalog/Catalog.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvo {

/// Makes a further rendering of the photo's file, with all that the catalog knows of the photo it is made
/// from, and its edits unless others are given. Without a name it is "Version " and a number that counts the
/// master as the first; after a deletion a number may come again.
PhotoID createVersion(Catalog& catalog, PhotoID photo, const std::optional<std::string>& name,
    const std::optional<PhotoEdits>& edits, UnixTime addedAt);
/// The versions of a master, or of the master of a version, oldest first.
std::vector<PhotoItem> versionsOf(Catalog& catalog, PhotoID photo);
/// Throws NotFoundError for a master, whose name is its file's.
void renameVersion(Catalog& catalog, PhotoID version, std::string_view name);

} // namespace korvo
