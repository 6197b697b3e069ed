#pragma once

#include "platform/ImageReader.h"
#include "platform/linux/images/PictureRows.h"

#include <functional>
#include <optional>

namespace korvo {

/// The kinds of pictures whose decoders are safe enough to run in our own process: JPEG, PNG and WebP.
/// Nothing for all other files.
OpenRows safeDecoder(const PictureFile& file);

/// Where the decoders' rows go: converted to sRGB, shrunk to the size asked for, turned upright. Throws
/// ImageError; Case::memory also for what would need more than `mostMemory` bytes besides the image.
DecodedImage decodePicture(PictureFile& file, OpenRows open, const ImageRequest& request,
    const std::stop_token& stop, std::int64_t mostMemory = std::numeric_limits<std::int64_t>::max());

} // namespace korvo
