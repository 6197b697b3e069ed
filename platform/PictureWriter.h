#pragma once

#include "base/Enum.h"
#include "platform/Image.h"
#include "platform/ImageError.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace korvo {

enum class PictureFormat { jpeg, png, webp, tiff };
KORVO_ENUM(PictureFormat, jpeg, png, webp, tiff)

/// The format that a file's name asks for by its ending; nothing for all others.
std::optional<PictureFormat> pictureFormat(const std::filesystem::path& file);
/// The ending that a format's files are given, with its dot.
std::string_view endingOf(PictureFormat format);
/// Whether its quality can be chosen.
bool hasQuality(PictureFormat format);

struct PictureShape {
    int width = 0;
    int height = 0;
    AlphaPlane alpha = AlphaPlane::absent;
};

/// Encodes a picture as its rows come. The sRGB profile goes with it. JPEG has no alpha: it shows white
/// through.
class PictureWriter {
public:
    virtual ~PictureWriter() = default;

    /// The next row, as a bitmap holds it. Throws ImageError (write, memory).
    virtual void write(const std::uint8_t* row) = 0;

    /// The whole file, after the last row. Throws ImageError (write, memory).
    virtual std::vector<std::uint8_t> finish() = 0;
};

/// `quality` is 1 to 100, and concerns JPEG and WebP only; `file` is for the texts of errors. JPEG's colours
/// are stored at full size from quality 90 on. Throws ImageError (tooLarge) for a size that the format cannot
/// hold.
std::unique_ptr<PictureWriter> pictureWriter(
    PictureFormat format, const PictureShape& shape, int quality, const std::filesystem::path& file);

/// The bytes of a small JPEG for our own use: without a profile, as sRGB, over white. Throws ImageError.
std::vector<std::uint8_t> encodedPreview(const Bitmap& image, int quality);
/// Its picture; nothing when the bytes are damaged.
std::optional<Bitmap> decodedPreview(std::vector<std::uint8_t> bytes);

} // namespace korvo
