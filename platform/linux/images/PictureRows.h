#pragma once

#include "platform/Orientation.h"
#include "platform/linux/images/PictureFile.h"

#include <cstring>
#include <limits>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

namespace korvo {

/// How the rows of a picture come from its decoder.
struct RowFormat {
    enum class Model { grey, rgb, cmyk };
    enum class Alpha {
        none,
        unused, ///< a fourth number that is always full
        straight,
        premultiplied
    };
    enum class Depth { bits8, bits16, real };

    Model model = Model::rgb;
    Alpha alpha = Alpha::unused;
    Depth depth = Depth::bits8;
    bool isLinear = false; ///< without a profile: linear light instead of sRGB's curve

    int colors() const { return model == Model::grey ? 1 : model == Model::rgb ? 3 : 4; }
    int channels() const { return colors() + (alpha != Alpha::none); }
    std::size_t pixelBytes() const
    {
        const std::size_t size = depth == Depth::bits8 ? 1 : depth == Depth::bits16 ? 2 : 4;
        return size * static_cast<std::size_t>(channels());
    }
};

inline constexpr auto notEnoughMemory = "there is not enough memory to decode it";
inline constexpr auto unknownCurveNote = "its HDR tone curve is not known: it is shown as if it were sRGB";

/// A picture as its file stores it.
struct PictureInfo {
    int width = 0; ///< of the rows, as the decoder shrinks them
    int height = 0;
    int fullWidth = 0; ///< of the whole picture, before it is turned
    int fullHeight = 0;
    RowFormat format;
    std::vector<std::uint8_t> profile; ///< ICC; or empty
    bool isAdobeRGB = false; ///< said without a profile
    Orientation orientation = Orientation::upright;
    std::string note;
};

/// The rows of a picture, from the top. Inks (CMYK) count from 0, none, up.
class PictureRows {
public:
    virtual ~PictureRows() = default;

    const PictureInfo& info() const { return info_; }

    /// The next row. Throws ImageError when there can be none; rows behind a damage are filled up.
    virtual void read(std::uint8_t* row) = 0;

protected:
    std::size_t rowBytes() const { return info_.format.pixelBytes() * static_cast<std::size_t>(info_.width); }

    /// Sets a row whose data are missing: grey, or nothing in a picture with alpha.
    void fill(std::uint8_t* row) const
    {
        using Alpha = RowFormat::Alpha;
        const auto& format = info_.format;
        std::memset(row, format.alpha == Alpha::none || format.alpha == Alpha::unused ? 128 : 0, rowBytes());
        const auto pixel = format.pixelBytes(), sample = pixel / static_cast<std::size_t>(format.channels());
        for (std::size_t end = pixel; format.alpha == Alpha::unused && end <= rowBytes(); end += pixel)
            std::memset(row + end - sample, 0xFF, sample);
    }

    PictureInfo info_;
};

/// What opening a picture may do by itself to save work.
struct OpenOptions {
    int size = 0; ///< the rows may be shrunk as long as the longer side keeps at least so many pixels; 0: not
    bool isQuick = false; ///< of a raw file its preview
    /// What decoding may hold besides the rows, which is everything in a progressive JPEG or an interlaced
    /// PNG.
    std::int64_t mostMemory = std::numeric_limits<std::int64_t>::max();
    std::stop_token stop = {}; ///< looked at where opening already decodes
};

/// Opens a picture. Throws ImageError.
using OpenRows = std::unique_ptr<PictureRows> (*)(PictureFile& file, const OpenOptions& options);

/// Refuses, before any memory is asked for, sizes that no camera makes. Throws ImageError (tooLarge,
/// damaged).
void checkSize(const PictureFile& file, std::int64_t width, std::int64_t height);

/// Whether a picture has the shape of the whole one to 1 % or a pixel: stored previews may have black bars,
/// lack the turn that the whole picture has, or follow a setting of the camera that its raw data do not.
bool hasShapeOf(int width, int height, int wholeWidth, int wholeHeight);

/// Refuses sizes that so few bytes cannot tell of, at most `pixelsInByte` pixels each. Throws ImageError
/// (damaged).
void checkContents(
    const PictureFile& file, std::int64_t width, std::int64_t height, std::uint64_t pixelsInByte);

std::unique_ptr<PictureRows> openJpeg(PictureFile& file, const OpenOptions& options);
/// A JPEG picture that lies in a file of any kind.
std::unique_ptr<PictureRows> openJpegAt(
    PictureFile& file, std::uint64_t offset, std::uint64_t length, const OpenOptions& options);
/// The smallest of a JPEG's embedded previews that has `options.size` pixels a side, in the picture's own
/// shape; null when there is none.
std::unique_ptr<PictureRows> openJpegPreview(PictureFile& file, const OpenOptions& options);
std::unique_ptr<PictureRows> openPng(PictureFile& file, const OpenOptions& options);
std::unique_ptr<PictureRows> openWebp(PictureFile& file, const OpenOptions& options);

// Those whose libraries are only linked into the decoder process.
std::unique_ptr<PictureRows> openTiff(PictureFile& file, const OpenOptions& options);
std::unique_ptr<PictureRows> openHeif(PictureFile& file, const OpenOptions& options);
std::unique_ptr<PictureRows> openRaw(PictureFile& file, const OpenOptions& options);
/// The first frame of a GIF or BMP, and one of a video.
std::unique_ptr<PictureRows> openFrame(PictureFile& file, const OpenOptions& options);

} // namespace korvo
