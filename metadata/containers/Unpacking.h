#pragma once

#include "metadata/containers/FileWindow.h"

#include <string_view>
#include <vector>

namespace korvo {

/// What zlib packed; nothing when it is damaged or too long for the window.
std::optional<ByteRange> inflated(FileWindow& file, ByteRange packed);

/// The bytes that pairs of hexadecimal digits stand for; anything between the digits is passed over.
std::vector<std::uint8_t> fromHexadecimal(std::string_view text);

/// The TIFF structure in a block that may begin with the mark of JPEG's EXIF segments.
ByteRange withoutExifMark(FileWindow& file, ByteRange block);

} // namespace korvo
