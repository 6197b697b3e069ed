#include "app/pictures/Previews.h"

#include <algorithm>

namespace korvo {

namespace {

constexpr int quality = 80;

PreviewKey keyOf(const RenderJob& job)
{
    return previewKey({job.file, job.edits, job.size, static_cast<int>(job.source)});
}

/// Those from `size` on, then the smaller ones, the nearest first.
std::vector<int> bySuitability(int size)
{
    std::vector<int> sizes(Previews::sizes.begin(), Previews::sizes.end());
    const auto larger = std::ranges::stable_partition(sizes, [size](int each) { return each >= size; });
    std::ranges::reverse(larger);
    return sizes;
}

} // namespace

std::string missingFileText(const std::string& file)
{
    return "The file is missing. Connect the disk that holds " + file
        + ", or bring the file back there. If its folder was moved or renamed, say where it is with “Locate "
          "Folder…” in the folder's menu in the sidebar.";
}

Bitmap Previews::preview(const RenderJob& job, const std::stop_token& stop)
{
    const auto key = keyOf(job);
    const auto state = previewState(job.file);
    if (state)
        if (auto image = kept(key, state))
            return *std::move(image);
    auto image = renderPhoto(reader_, job, stop).image;
    const auto bytes = encodedPreview(image, quality);
    if (state)
        cache_.store(key, *state, bytes);
    return isOpaque(image) ? image : decodedPreview(bytes).value(); // as it will be seen the next time
}

std::optional<Bitmap> Previews::lastShown(const RenderJob& job, const std::stop_token& stop)
{
    if (auto image = keptAtAnySize(job, stop))
        return image;
    const auto unedited = keptAtAnySize({.file = job.file, .edits = {}, .size = job.size}, stop);
    if (!unedited)
        return std::nullopt;
    return renderDecoded({*unedited, unedited->width, unedited->height, {}}, job.edits, job.size);
}

/// In that state of its file, or in any.
std::optional<Bitmap> Previews::kept(const PreviewKey& key, const std::optional<std::string>& fileState)
{
    auto found = cache_.find(key);
    if (!found || (fileState && found->fileState != fileState))
        return std::nullopt;
    auto image = decodedPreview(std::move(found->image));
    if (!image)
        cache_.remove(key);
    return image;
}

std::optional<Bitmap> Previews::keptAtAnySize(RenderJob job, const std::stop_token& stop)
{
    for (const int size : bySuitability(job.size))
        for (const auto source : {PictureSource::whole, PictureSource::quick}) {
            if (stop.stop_requested())
                return std::nullopt;
            job.size = size;
            job.source = source;
            if (auto image = kept(keyOf(job), std::nullopt))
                return image;
        }
    return std::nullopt;
}

} // namespace korvo
