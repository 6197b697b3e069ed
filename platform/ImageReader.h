#pragma once

#include "platform/Image.h"
#include "platform/ImageError.h"

#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <variant>

namespace korvo {

/// Which pixels are asked for.
enum class PixelKind {
    bitmap, ///< 8-bit sRGB
    linear, ///< linear extended sRGB
    asStored ///< a bitmap from files of 8-bit sRGB, linear from all that hold more
};

/// Which of a file's pictures is asked for.
enum class PictureSource {
    quick, ///< an embedded preview where it is large enough; of a raw file always, if it has one
    whole ///< the picture itself; raw files are developed
};

/// Told on the reading thread how many rows of a bitmap are finished, so that work on them can begin. Its
/// bytes stay where they are in the image that is returned in the end. 0 rows: it cannot be finished, and its
/// bytes go when the call returns.
using RowsReady = std::function<void(const Bitmap& unfinished, int rows)>;

struct ImageRequest {
    /// The most pixels that the longer side may have: the picture is shrunk to it, never enlarged. 0: none.
    int size = 0;
    PixelKind kind = PixelKind::bitmap;
    PictureSource source = PictureSource::whole;
    RowsReady rowsReady = {}; ///< called for whole opaque bitmaps whose rows come in order, for others not
};

/// A picture as it is to be seen: upright, its colour profile applied, the first of several.
struct DecodedImage {
    std::variant<Bitmap, LinearImage> pixels;
    int fullWidth = 0; ///< of the file's own picture, upright
    int fullHeight = 0;
    std::string note; ///< what the user should know of it, as that it is a raw file's preview; or empty
};

/// The most pixels that a picture may have: about ten times what the largest cameras make.
inline constexpr std::int64_t mostPixels = std::int64_t(1) << 29;

/// Reads pictures of every image, raw and video type that a library takes in, told by their content. May be
/// used from several threads at once.
class ImageReader {
public:
    virtual ~ImageReader() = default;

    /// Throws ImageError. Pictures that are cut off are read as far as they go, with a note.
    virtual DecodedImage read(
        const std::filesystem::path& file, const ImageRequest& request, const std::stop_token& stop)
        = 0;
};

} // namespace korvo
