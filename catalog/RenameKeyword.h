#pragma once

#include "catalog/Catalog.h"

namespace korvo {

/// Gives a keyword of the library's list another name, and takes it in the place of the old one in the lists
/// of all photos that have it, which then wait to be written into their files. In one transaction. Throws
/// NotFoundError, std::invalid_argument for a blank name, for one with a comma, which would be two, and
/// DatabaseError.
void renameKeyword(Catalog& catalog, std::int64_t id, std::string_view name);

} // namespace korvo
