#pragma once

#include "app/pictures/PhotoRender.h"
#include "catalog/PreviewCache.h"

namespace korvo {

/// Says that a photo's file is missing, and what to do; `file` is its path, or a word for it.
std::string missingFileText(const std::string& file);

/// Photos at the sizes of the grid and the viewer: from the cache, or rendered and kept there.
class Previews {
public:
    static constexpr int thumbnailSize = 512; ///< pixels of the longer side
    /// The sizes at which previews are kept.
    static constexpr std::array sizes = {thumbnailSize, 1024, 2048, 4096};

    /// Both must outlive it.
    Previews(ImageReader& reader, PreviewCache& cache) : reader_(reader), cache_(cache) { }

    /// The photo with its edits. Transparent pictures are shown over white. Throws ImageError.
    Bitmap preview(const RenderJob& job, const std::stop_token& stop);

    /// The photo as it was shown last, for a file that is missing: at the size that comes nearest among those
    /// kept. With edits that it was never shown with, they are drawn over what is kept of it without any.
    std::optional<Bitmap> lastShown(const RenderJob& job, const std::stop_token& stop);

private:
    std::optional<Bitmap> kept(const PreviewKey& key, const std::optional<std::string>& fileState);
    std::optional<Bitmap> keptAtAnySize(RenderJob job, const std::stop_token& stop);

    ImageReader& reader_;
    PreviewCache& cache_;
};

} // namespace korvo
