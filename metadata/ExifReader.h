#pragma once

#include "metadata/CaptureDate.h"
#include "metadata/PhotoExifInfo.h"

#include <filesystem>

namespace korvo {

/// The camera facts of an image, raw or video file; nothing when it cannot be read or says nothing of itself.
std::optional<PhotoExifInfo> readExif(const std::filesystem::path& file);

/// Where a file says it was taken; nothing when it cannot be read or does not say.
std::optional<Coordinate> readGPS(const std::filesystem::path& file);

/// Where a file keeps its position and its date; nothing when it cannot be read.
std::optional<FileParts> fileParts(const std::filesystem::path& file);

} // namespace korvo
