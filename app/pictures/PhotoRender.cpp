#include "app/pictures/PhotoRender.h"

#include "app/pictures/BandEncoder.h"
#include "edits/BasicStage.h"
#include "edits/DisabledBricks.h"
#include "edits/Geometry.h"
#include "platform/Shrinking.h"

#include <cmath>

namespace korvo {

namespace {

/// What is to be done to a photo, worked out before it is decoded.
struct Work {
    explicit Work(const RenderJob& job)
    {
        const auto edits = withoutDisabledBricks(job.edits);
        filters = basicFilters(edits);
        geometry = geometryOf(edits);
        request.kind = PixelKind::asStored;
        request.source = job.source;
        if (job.size > 0) // so many before the crop that enough are left after it
            request.size = static_cast<int>(std::min(std::ceil(job.size / geometry.leastKept()), 1e9));
    }

    std::vector<BasicFilter> filters;
    Geometry geometry;
    ImageRequest request;
};

/// The pixels of the render for one of the photo's.
double scaleOf(const DecodedImage& image)
{
    const int width = std::visit([](const auto& pixels) { return pixels.width; }, image.pixels);
    return image.fullWidth > 0 ? double(width) / image.fullWidth : 1;
}

Bitmap staged(const DecodedImage& image, const BasicPlan& plan)
{
    Bitmap result;
    std::visit([&](const auto& pixels) { runBasicStage(plan, pixels, result); }, image.pixels);
    return result;
}

/// The decoded image adjusted; its own memory goes before the rest needs more.
Bitmap adjusted(DecodedImage image, const Work& work)
{
    const auto plan = basicPlan(work.filters, scaleOf(image));
    if (auto* const bitmap = std::get_if<Bitmap>(&image.pixels); bitmap && plan.isIdentity())
        return std::move(*bitmap);
    return staged(image, plan);
}

Bitmap finished(DecodedImage image, const Work& work, int size)
{
    return shrunk(withGeometry(adjusted(std::move(image), work), work.geometry), size);
}

EncodedPhoto encoded(
    const Bitmap& image, PictureFormat format, int quality, const std::filesystem::path& file)
{
    const auto alpha = isOpaque(image) ? AlphaPlane::absent : AlphaPlane::present;
    const auto writer = pictureWriter(format, {image.width, image.height, alpha}, quality, file);
    for (int y = 0; y < image.height; ++y)
        writer->write(image.row(y));
    return {writer->finish(), image.width, image.height, {}};
}

} // namespace

RenderedPhoto renderPhoto(ImageReader& reader, const RenderJob& job, const std::stop_token& stop)
{
    const Work work(job);
    auto image = reader.read(job.file, work.request, stop);
    auto note = image.note;
    return {finished(std::move(image), work, job.size), std::move(note)};
}

Bitmap renderDecoded(const DecodedImage& image, const PhotoEdits& edits, int size)
{
    const Work work({.edits = edits, .size = size});
    return shrunk(withGeometry(staged(image, basicPlan(work.filters, scaleOf(image))), work.geometry), size);
}

EncodedPhoto encodePhoto(
    ImageReader& reader, const RenderJob& job, PictureFormat format, int quality, const std::stop_token& stop)
{
    Work work(job);
    BandEncoder bands(basicPlan(work.filters), [&](int width, int height) {
        return pictureWriter(format, {width, height}, quality, job.file);
    });
    if (work.geometry.isIdentity() && work.request.size == 0)
        work.request.rowsReady = [&](const Bitmap& image, int rows) { bands.rowsReady(image, rows); };
    auto image = reader.read(job.file, work.request, stop);
    auto note = image.note;
    auto result = bands.hasBegun()
        ? EncodedPhoto{bands.finish(), image.fullWidth, image.fullHeight, {}}
        : encoded(finished(std::move(image), work, job.size), format, quality, job.file);
    result.note = std::move(note);
    return result;
}

} // namespace korvo
