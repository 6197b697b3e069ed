#include "app/Previews.h"

namespace korvo {

namespace {

constexpr int quality = 80;

std::optional<PreviewKey> keyOf(const RenderJob& job)
{
    return previewKey({job.file, job.edits, job.size, static_cast<int>(job.source)});
}

} // namespace

Bitmap Previews::preview(const RenderJob& job, const std::stop_token& stop)
{
    const auto key = keyOf(job);
    if (auto kept = key ? cache_.find(*key) : std::nullopt) {
        if (auto image = decodedPreview(*std::move(kept)))
            return *std::move(image);
        cache_.remove(*key);
    }
    return render(job, key, stop).image;
}

std::vector<std::uint8_t> Previews::encoded(const RenderJob& job, const std::stop_token& stop)
{
    const auto key = keyOf(job);
    auto kept = key ? cache_.find(*key) : std::nullopt;
    return kept ? *std::move(kept) : render(job, key, stop).bytes;
}

Previews::Rendered Previews::render(
    const RenderJob& job, const std::optional<PreviewKey>& key, const std::stop_token& stop)
{
    Rendered rendered{renderPhoto(reader_, job, stop).image, {}};
    rendered.bytes = encodedPreview(rendered.image, quality);
    if (key)
        cache_.store(*key, rendered.bytes);
    if (!isOpaque(rendered.image)) // as it will be seen the next time
        rendered.image = decodedPreview(rendered.bytes).value();
    return rendered;
}

} // namespace korvo
