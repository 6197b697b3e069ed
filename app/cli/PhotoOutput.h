#pragma once

#include "catalog/PhotoItem.h"

#include <string>

namespace korvo {

/// A photo as one JSON object on one line; what is not set is left out.
std::string photoJSON(const PhotoItem& item);

/// A photo as one line of a list for a person.
std::string photoLine(const PhotoItem& item);

/// Everything a photo holds, for a person, a fact a line.
std::string photoText(const PhotoItem& item);

} // namespace korvo
