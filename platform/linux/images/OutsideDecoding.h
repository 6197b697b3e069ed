#pragma once

#include "platform/linux/images/PictureDecoding.h"

namespace korvo {

/// Decodes a picture of any kind in this process, which may end by it. Throws ImageError.
DecodedImage decodeAnyPicture(
    const std::filesystem::path& path, const ImageRequest& request, const std::stop_token& stop);

} // namespace korvo
