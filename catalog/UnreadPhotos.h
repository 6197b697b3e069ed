#pragma once

#include "catalog/Catalog.h"

#include <string_view>

namespace korvo {

/// What the library has of a file: nothing, a master, or one that was taken in although the file could not be
/// read, and of which nothing is known since.
enum class HeldFile { none, read, unread };
HeldFile heldFile(Catalog& catalog, std::string_view path);

/// Stores what the file of an unread master holds, now that it can be read. What of it was not read now
/// is to be read later.
void storeLateReading(Catalog& catalog, PhotoID id, const NewPhoto& photo);

/// A photo has no position until its file is read again.
void forgetPosition(Catalog& catalog, PhotoID id);

} // namespace korvo
