#pragma once

#include "metadata/Coordinate.h"

#include <optional>
#include <string_view>

namespace korvo {

/// The position in a text such as "+48.8577+002.2950+035/" (ISO 6709, annex H): latitude and longitude in
/// degrees, in degrees and minutes, or in degrees, minutes and seconds, by the number of digits. An altitude
/// is passed over.
std::optional<Coordinate> parseIso6709(std::string_view text);

} // namespace korvo
