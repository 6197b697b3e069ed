#pragma once

#include "aperture/BinaryPlist.h"

#include <string>

namespace korvo {

/// A value as text to compare: [1, 'text', {'key': uid 3}].
std::string described(const BinaryPlist::Value& value);

} // namespace korvo
