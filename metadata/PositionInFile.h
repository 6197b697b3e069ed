#pragma once

#include "metadata/Coordinate.h"
#include "metadata/exiftool/ExifToolArguments.h"

namespace korvo {

/// The call of exiftool that makes a file hold this position, or none, wherever files of its kind keep one.
ExifToolArguments positionArguments(
    const std::filesystem::path& file, const std::optional<Coordinate>& position);

/// Throws ExifToolError::Case::failed when a file that can be read holds another position, since the tool
/// passes over what it cannot write without a word.
void checkPosition(const std::filesystem::path& file, const std::optional<Coordinate>& position);

} // namespace korvo
