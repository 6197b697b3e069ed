#pragma once

#include "app/PhotoRender.h"
#include "catalog/PreviewCache.h"

namespace korvo {

/// Photos at the sizes of the grid and the viewer: from the cache, or rendered and kept there.
class Previews {
public:
    static constexpr int thumbnailSize = 512; ///< pixels of the longer side

    /// Both must outlive it.
    Previews(ImageReader& reader, PreviewCache& cache) : reader_(reader), cache_(cache) { }

    /// The photo with its edits. Transparent pictures are shown over white. Throws ImageError.
    Bitmap preview(const RenderJob& job, const std::stop_token& stop);

    /// The same as the JPEG that the cache holds.
    std::vector<std::uint8_t> encoded(const RenderJob& job, const std::stop_token& stop);

private:
    struct Rendered {
        Bitmap image;
        std::vector<std::uint8_t> bytes;
    };
    Rendered render(const RenderJob& job, const std::optional<PreviewKey>& key, const std::stop_token& stop);

    ImageReader& reader_;
    PreviewCache& cache_;
};

} // namespace korvo
