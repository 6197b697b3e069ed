#pragma once

#include "aperture/BinaryPlist.h"
#include "catalog/SmartAlbumRules.h"

#include <optional>

namespace korvo {

/// The rules that say the same as the query of an Aperture smart album; nothing when ours cannot.
std::optional<SmartAlbumRules> convertSmartAlbum(const BinaryPlist::Value& query);

} // namespace korvo
