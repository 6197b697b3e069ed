#include "edits/Geometry.h"

#include "platform/Orientation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <oneapi/tbb/parallel_for.h>

namespace korvo {

namespace {

constexpr double mostStraightening = 45;

/// In pixels.
struct Area {
    int left = 0, top = 0, width = 0, height = 0;
};

/// The pixels that a crop keeps, at least one.
Area areaOf(const CropRect& crop, int width, int height)
{
    const auto edge
        = [](double fraction, int side) { return static_cast<int>(std::lround(fraction * side)); };
    Area area;
    area.left = std::clamp(edge(crop.x, width), 0, width - 1);
    area.top = std::clamp(edge(crop.y, height), 0, height - 1);
    area.width = std::clamp(edge(crop.x + crop.w, width) - area.left, 1, width - area.left);
    area.height = std::clamp(edge(crop.y + crop.h, height) - area.top, 1, height - area.top);
    return area;
}

Bitmap cropped(Bitmap image, const Area& area)
{
    if (area.width == image.width && area.height == image.height)
        return image;
    Bitmap result(area.width, area.height);
    for (int y = 0; y < area.height; ++y)
        std::copy_n(image.row(area.top + y) + 4 * static_cast<std::ptrdiff_t>(area.left), result.rowBytes(),
            result.row(y));
    return result;
}

/// The weights of four pixels around a place between the middle two (Catmull-Rom).
std::array<float, 4> cubic(float t)
{
    const float t2 = t * t, t3 = t2 * t;
    return {-0.5F * t + t2 - 0.5F * t3, 1 - 2.5F * t2 + 1.5F * t3, 0.5F * t + 2 * t2 - 1.5F * t3,
        0.5F * (t3 - t2)};
}

/// The picture at a place between pixels; beyond the borders it goes on as at them.
void sample(const Bitmap& image, double x, double y, std::uint8_t* rgba)
{
    const int left = static_cast<int>(std::floor(x)), top = static_cast<int>(std::floor(y));
    const auto across = cubic(static_cast<float>(x - left)), down = cubic(static_cast<float>(y - top));
    std::array<float, 4> sum{};
    for (int j = 0; j < 4; ++j) {
        const std::uint8_t* const row = image.row(std::clamp(top - 1 + j, 0, image.height - 1));
        for (int i = 0; i < 4; ++i) {
            const std::uint8_t* const pixel = row + 4 * std::clamp(left - 1 + i, 0, image.width - 1);
            const float weight = across[static_cast<std::size_t>(i)] * down[static_cast<std::size_t>(j)];
            for (std::size_t channel = 0; channel < 4; ++channel)
                sum[channel] += weight * pixel[channel];
        }
    }
    rgba[3] = static_cast<std::uint8_t>(std::clamp(sum[3] + 0.5F, 0.0F, 255.0F));
    for (std::size_t channel = 0; channel < 3; ++channel)
        rgba[channel]
            = std::min(static_cast<std::uint8_t>(std::clamp(sum[channel] + 0.5F, 0.0F, 255.0F)), rgba[3]);
}

/// The area of the picture turned about its middle, and enlarged until its corners are covered.
Bitmap straightened(const Bitmap& image, double degrees, const Area& area)
{
    const double angle = degrees * std::numbers::pi / 180;
    const double sine = std::sin(angle), cosine = std::cos(angle);
    const double wide = image.width, high = image.height;
    const double zoom = cosine + std::abs(sine) * std::max(wide / high, high / wide);
    const double middleX = (wide - 1) / 2, middleY = (high - 1) / 2;
    Bitmap result(area.width, area.height);
    tbb::parallel_for(0, area.height, [&](int y) {
        std::uint8_t* to = result.row(y);
        const double v = (area.top + y - middleY) / zoom;
        for (int x = 0; x < area.width; ++x, to += 4) {
            const double u = (area.left + x - middleX) / zoom;
            sample(image, middleX + cosine * u + sine * v, middleY - sine * u + cosine * v, to);
        }
    });
    return result;
}

} // namespace

bool Geometry::isIdentity() const
{
    return quarterTurns == 0 && !flipsHorizontally && !flipsVertically && straighten == 0
        && crop == CropRect{0, 0, 1, 1};
}

double Geometry::leastKept() const
{
    return std::min(crop.w, crop.h);
}

Geometry geometryOf(const PhotoEdits& edits)
{
    Geometry geometry;
    geometry.quarterTurns = static_cast<int>(edits.rotation.value_or(0) % 4 + 4) % 4;
    geometry.flipsHorizontally = edits.flipHorizontal.value_or(false);
    geometry.flipsVertically = edits.flipVertical.value_or(false);
    geometry.straighten = std::clamp(edits.straighten.value_or(0), -mostStraightening, mostStraightening);
    if (const auto& crop = edits.crop; crop && crop->w > 0 && crop->h > 0) {
        const double left = std::clamp(crop->x, 0.0, 1.0), top = std::clamp(crop->y, 0.0, 1.0);
        const double right = std::clamp(crop->x + crop->w, 0.0, 1.0),
                     bottom = std::clamp(crop->y + crop->h, 0.0, 1.0);
        if (right > left && bottom > top)
            geometry.crop = {left, top, right - left, bottom - top};
    }
    return geometry;
}

void turn(PhotoEdits& edits, int quarters)
{
    for (int i = 0; i < (quarters % 4 + 4) % 4; ++i) {
        if (edits.flipHorizontal != edits.flipVertical) // the flips come after the turn
            std::swap(edits.flipHorizontal, edits.flipVertical);
        if (auto& crop = edits.crop)
            crop = {std::max(0.0, 1 - crop->y - crop->h), crop->x, crop->h, crop->w};
        const auto rotation = (edits.rotation.value_or(0) % 4 + 5) % 4;
        edits.rotation = rotation != 0 ? std::optional(rotation) : std::nullopt;
    }
}

std::pair<int, int> sizeWith(const Geometry& geometry, int width, int height)
{
    if (geometry.quarterTurns % 2 != 0)
        std::swap(width, height);
    if (width <= 0 || height <= 0)
        return {0, 0};
    const auto area = areaOf(geometry.crop, width, height);
    return {area.width, area.height};
}

Bitmap withGeometry(Bitmap image, const Geometry& geometry)
{
    constexpr std::array turns{
        Orientation::upright, Orientation::quarterRight, Orientation::upsideDown, Orientation::quarterLeft};
    image = turned(std::move(image), turns[static_cast<std::size_t>(geometry.quarterTurns)]);
    if (geometry.flipsHorizontally)
        image = turned(std::move(image), Orientation::mirrored);
    if (geometry.flipsVertically)
        image = turned(std::move(image), Orientation::flipped);
    const auto area = areaOf(geometry.crop, image.width, image.height);
    if (geometry.straighten != 0)
        return straightened(image, geometry.straighten, area);
    return cropped(std::move(image), area);
}

} // namespace korvo
