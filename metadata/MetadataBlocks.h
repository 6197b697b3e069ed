#pragma once

#include "base/Dates.h"
#include "metadata/Coordinate.h"
#include "metadata/FileWindow.h"

#include <cstdint>
#include <optional>
#include <string>

namespace korvo {

/// Size of a picture as it is stored, before any rotation.
struct PixelSize {
    std::uint64_t width = 0, height = 0;

    bool empty() const { return width == 0 || height == 0; }
    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// Where in a file its metadata lie, as the finder of its container tells, and what the container itself
/// says.
struct MetadataBlocks {
    std::optional<ByteRange> exif; ///< a TIFF structure, with its EXIF and GPS directories inside
    std::optional<ByteRange>
        exifDirectory; ///< a TIFF structure of its own whose first directory is the EXIF one
    std::optional<ByteRange> gpsDirectory; ///< likewise for GPS
    std::optional<ByteRange> xmp;
    std::optional<ByteRange>
        extendedXmp; ///< the part of an XMP packet that did not fit into one JPEG segment
    std::optional<ByteRange> iptc; ///< IIM data sets
    PixelSize size;
};

} // namespace korvo
