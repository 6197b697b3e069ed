#pragma once

#include "catalog/GridOrder.h"
#include "catalog/LibrarySource.h"

#include <string>

namespace korvo {

// The statements that list a source; "?1" is the source's id. They know nothing of smart albums, whose rules
// are tried on all photos.

ListedBy listedBy(const std::optional<LibrarySource>& source);

/// Lists the source; where no order was made by hand, `orderByName` ends the statement.
std::string queryOf(const std::optional<LibrarySource>& source, std::string_view orderByName);

/// Gives the photo "?2" if the source lists it. Only for sources that are not ordered by hand.
std::string queryOfOne(const std::optional<LibrarySource>& source);

} // namespace korvo
