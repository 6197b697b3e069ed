#pragma once

#include "base/Bytes.h"
#include "platform/Orientation.h"

#include <optional>
#include <vector>

namespace korvo {

/// Where a smaller JPEG picture lies in a block or file.
struct EmbeddedJpeg {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;

    bool operator==(const EmbeddedJpeg&) const = default;
};

/// What the decoding of a picture needs of its EXIF block; the rest of it is the metadata's business.
struct ExifPicture {
    Orientation orientation = Orientation::upright;
    std::optional<EmbeddedJpeg> thumbnail; ///< in the block
    bool isAdobeRGB = false; ///< as cameras tell it that embed no profile (DCF 2.0, 2.5.2)
};

/// Reads a TIFF structure as it stands in EXIF blocks, whatever it holds: entries that lie are passed over.
ExifPicture exifPicture(Bytes tiff);

/// The size of the picture in a JPEG stream, from its frame header; nothing for streams that have none within
/// `bytes`, and for codings that are not pictures to be shown, such as the lossless one of raw data.
struct JpegSize {
    int width = 0;
    int height = 0;
};
std::optional<JpegSize> jpegSize(Bytes bytes);

/// What a JPEG file says of itself before its pixels, and which smaller pictures of it lie in the file: the
/// EXIF thumbnail, and the "large thumbnails" of its multi-picture index (CIPA DC-007, 5.2.3.3). `head` is
/// the file's beginning; offsets are from there.
struct JpegHead {
    ExifPicture exif;
    std::vector<std::uint8_t> profile; ///< ICC; or empty
    std::vector<EmbeddedJpeg> previews;
};
JpegHead readJpegHead(Bytes head);

/// The largest JPEG picture that lies anywhere in a file of any kind, found by its mark: the preview of raw
/// files whose structure is not known.
std::optional<EmbeddedJpeg> largestJpegIn(Bytes file);

} // namespace korvo
