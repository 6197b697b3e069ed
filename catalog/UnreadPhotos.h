#pragma once

#include "catalog/Catalog.h"

#include <string_view>

namespace korvo {

/// Whether the file has a master, taken in although the file could not be read, of which nothing is known
/// since.
bool isUnread(Catalog& catalog, std::string_view path);

/// Stores what the file of such a master holds, now that it can be read. Its camera data are to be read
/// again.
void storeLateReading(Catalog& catalog, PhotoID id, const NewPhoto& photo);

} // namespace korvo
