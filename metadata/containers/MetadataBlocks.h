#pragma once

#include "metadata/ExifTags.h"
#include "metadata/containers/FileWindow.h"

#include <optional>

namespace korvo {

/// Where in a file its metadata lie, as the finder of its container tells, and what the container itself
/// says.
struct MetadataBlocks {
    std::optional<ByteRange> exif; ///< a TIFF structure, with its EXIF and GPS directories inside
    /// A TIFF structure of its own whose first directory is the EXIF one.
    std::optional<ByteRange> exifDirectory;
    std::optional<ByteRange> gpsDirectory; ///< likewise for GPS
    /// Of the preview in a raw file, or an older one; completes the others.
    std::optional<ByteRange> furtherExif;
    std::optional<ByteRange> xmp;
    /// The part of an XMP packet that did not fit into one JPEG segment.
    std::optional<ByteRange> extendedXmp;
    std::optional<ByteRange> iptc; ///< IIM data sets
    ExifTags own; ///< what is said outside any EXIF block
    PixelSize size;
    FileParts parts; ///< that exiftool writes into in files of this kind
};

} // namespace korvo
