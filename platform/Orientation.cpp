#include "platform/Orientation.h"

#include <algorithm>
#include <cstring>

namespace korvo {

namespace {

/// Where in a stored picture the pixel at x, y of the upright one lies: start + x * across + y * down.
struct Steps {
    std::ptrdiff_t start = 0, across = 1, down = 0;
};

Steps stepsOf(Orientation orientation, std::ptrdiff_t width, std::ptrdiff_t height)
{
    const auto last = width * height - 1, lastRow = last - (width - 1);
    switch (orientation) {
    case Orientation::upright:
        return {0, 1, width};
    case Orientation::mirrored:
        return {width - 1, -1, width};
    case Orientation::upsideDown:
        return {last, -1, -width};
    case Orientation::flipped:
        return {lastRow, 1, -width};
    case Orientation::transposed:
        return {0, width, 1};
    case Orientation::quarterRight:
        return {lastRow, -width, 1};
    case Orientation::transversed:
        return {last, -width, -1};
    case Orientation::quarterLeft:
        return {width - 1, width, -1};
    }
    return {};
}

/// Copies in squares, so that turning by a quarter stays within the cache.
template <typename Pixel>
void copyTurned(const Pixel* from, Pixel* to, int width, int height, const Steps& steps)
{
    constexpr int side = 64;
    for (int top = 0; top < height; top += side)
        for (int left = 0; left < width; left += side)
            for (int y = top; y < std::min(top + side, height); ++y) {
                const Pixel* source = from + steps.start + y * steps.down + left * steps.across;
                Pixel* const row = to + std::ptrdiff_t(y) * width;
                for (int x = left; x < std::min(left + side, width); ++x, source += steps.across)
                    row[x] = *source;
            }
}

struct Pixel32 {
    std::uint8_t bytes[4];
};

} // namespace

Orientation orientationOf(int number)
{
    return number >= 1 && number <= 8 ? static_cast<Orientation>(number) : Orientation::upright;
}

Bitmap turned(Bitmap image, Orientation orientation)
{
    if (orientation == Orientation::upright)
        return image;
    const bool swaps = swapsSides(orientation);
    Bitmap result(swaps ? image.height : image.width, swaps ? image.width : image.height);
    copyTurned(reinterpret_cast<const Pixel32*>(image.bytes.data()),
        reinterpret_cast<Pixel32*>(result.bytes.data()), result.width, result.height,
        stepsOf(orientation, image.width, image.height));
    return result;
}

LinearImage turned(LinearImage image, Orientation orientation)
{
    if (orientation == Orientation::upright)
        return image;
    LinearImage result;
    result.width = swapsSides(orientation) ? image.height : image.width;
    result.height = swapsSides(orientation) ? image.width : image.height;
    const auto steps = stepsOf(orientation, image.width, image.height);
    for (const auto plane :
        {&LinearImage::red, &LinearImage::green, &LinearImage::blue, &LinearImage::alpha}) {
        PixelBuffer<float> from = std::move(image.*plane); // each goes before the next is made
        if (from.empty())
            continue;
        (result.*plane).resize(from.size());
        copyTurned(from.data(), (result.*plane).data(), result.width, result.height, steps);
    }
    return result;
}

} // namespace korvo
