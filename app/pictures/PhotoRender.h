#pragma once

#include "edits/PhotoEdits.h"
#include "platform/ImageReader.h"
#include "platform/PictureWriter.h"

#include <filesystem>
#include <stop_token>
#include <string>

namespace korvo {

/// A photo to be shown or written with its edits.
struct RenderJob {
    std::filesystem::path file;
    PhotoEdits edits;
    int size = 0; ///< the most pixels of the longer side of what comes out; 0: as many as there are
    PictureSource source = PictureSource::whole;
};

struct RenderedPhoto {
    Bitmap image;
    std::string note; ///< what the user should know of it, or empty
};

/// Decodes a photo and applies its edits: the basic adjustments, then rotation, flips, straightening and
/// crop. Switched-off bricks are left out. Throws ImageError.
RenderedPhoto renderPhoto(ImageReader& reader, const RenderJob& job, const std::stop_token& stop);

/// A decoded photo with edits, its longer side no more than `size`; 0: no limit.
Bitmap renderDecoded(const DecodedImage& image, const PhotoEdits& edits, int size);

struct EncodedPhoto {
    std::vector<std::uint8_t> bytes;
    int width = 0;
    int height = 0;
    std::string note;
};

/// Renders a photo and encodes it. Where the decoder gives rows one after the other, they are rendered and
/// encoded while it works on the next ones. Throws ImageError.
EncodedPhoto encodePhoto(ImageReader& reader, const RenderJob& job, PictureFormat format, int quality,
    const std::stop_token& stop);

} // namespace korvo
