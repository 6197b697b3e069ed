#include "app/pictures/RenderMatch.h"

#include "aperture/ToneMatch.h"
#include "app/pictures/PhotoRender.h"

#include <algorithm>
#include <cstdlib>

namespace korvo {

namespace {

constexpr int comparedSize = 256; // pixels of the longer side: tone needs no detail

bool isDrawn(PhotoEdits edits)
{
    const PhotoEdits none;
    for (const auto field : {&PhotoEdits::exposure, &PhotoEdits::saturation, &PhotoEdits::vibrance,
             &PhotoEdits::temperature, &PhotoEdits::tint, &PhotoEdits::sharpness})
        edits.*field = none.*field;
    edits.highlights.reset();
    edits.shadows.reset();
    edits.rotation.reset();
    edits.straighten.reset();
    edits.crop.reset();
    edits.retouches.reset(); // spots are too small for the tone of the whole
    return isIdentity(edits);
}

/// The upper left part of a picture.
Bitmap cut(const Bitmap& bitmap, int width, int height)
{
    Bitmap part(width, height);
    for (int y = 0; y < height; ++y)
        std::copy_n(bitmap.row(y), part.rowBytes(), part.row(y));
    return part;
}

std::optional<ToneCurves> fit(const Bitmap& ours, const Bitmap& theirs)
{
    // Shrinking rounds; a larger difference is that of another picture.
    if (std::abs(ours.width - theirs.width) > 1 || std::abs(ours.height - theirs.height) > 1)
        return std::nullopt;
    const int width = std::min(ours.width, theirs.width);
    const int height = std::min(ours.height, theirs.height);
    return fitToneCurve(cut(ours, width, height), cut(theirs, width, height));
}

} // namespace

std::optional<ToneCurves> matchRender(ImageReader& reader, const std::filesystem::path& original,
    const PhotoEdits& edits, const std::filesystem::path& preview, const std::stop_token& stop)
{
    if (!isDrawn(edits))
        return std::nullopt;
    try {
        const auto theirs = reader.read(preview, {comparedSize, PixelKind::bitmap}, stop);
        const auto ours = renderPhoto(reader, {original, edits, comparedSize}, stop);
        return fit(ours.image, std::get<Bitmap>(theirs.pixels));
    } catch (const ImageError&) {
        return std::nullopt; // the photo comes in all the same, unmatched
    }
}

MatchRender matchBy(ImageReader& reader, std::stop_token stop)
{
    return [&reader, until = std::move(stop)](const std::filesystem::path& original, const PhotoEdits& edits,
               const std::filesystem::path& preview) {
        return matchRender(reader, original, edits, preview, until);
    };
}

} // namespace korvo
