#include "edits/HistogramData.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace korvo {

namespace {

constexpr double longSide = 200;

using Counts = std::array<std::int64_t, HistogramData::bins>;

struct ChannelCounts {
    Counts red{};
    Counts green{};
    Counts blue{};
    Counts luminance{};
};

/// The pixels of a row or column that are counted: the middles of `scale` times as many equal parts.
std::vector<std::size_t> sampled(int length, double scale)
{
    // In doubles as given: for some lengths the product falls short of 200 and leaves 199.
    const auto count = std::max<std::size_t>(static_cast<std::size_t>(scale * length), 1);
    std::vector<std::size_t> places(count);
    for (std::size_t i = 0; i < count; ++i)
        places[i] = (2 * i + 1) * static_cast<std::size_t>(length) / (2 * count);
    return places;
}

void countPixel(ChannelCounts& counts, const std::uint8_t* pixel)
{
    const std::size_t red = pixel[0], green = pixel[1], blue = pixel[2];
    ++counts.red[red / 4];
    ++counts.green[green / 4];
    ++counts.blue[blue / 4];
    ++counts.luminance[(299 * red + 587 * green + 114 * blue) / 4000];
}

ChannelCounts counted(const Bitmap& image)
{
    const double scale = std::min(longSide / std::max(image.width, image.height), 1.0);
    const auto columns = sampled(image.width, scale);
    ChannelCounts counts;
    for (const std::size_t y : sampled(image.height, scale)) {
        const std::uint8_t* const row = image.row(static_cast<int>(y));
        for (const std::size_t x : columns)
            countPixel(counts, row + 4 * x);
    }
    return counts;
}

/// The square root keeps thin tails visible.
HistogramData::Heights heights(const Counts& counts)
{
    HistogramData::Heights result{};
    const std::int64_t most = *std::max_element(counts.begin(), counts.end());
    if (most >= 1)
        std::transform(counts.begin(), counts.end(), result.begin(), [&](std::int64_t count) {
            return std::sqrt(static_cast<double>(count) / static_cast<double>(most));
        });
    return result;
}

} // namespace

const HistogramData& emptyHistogram()
{
    static const HistogramData empty;
    return empty;
}

HistogramData histogram(const Bitmap& image)
{
    if (image.bytes.empty())
        return emptyHistogram();
    const ChannelCounts counts = counted(image);
    return {heights(counts.red), heights(counts.green), heights(counts.blue), heights(counts.luminance)};
}

} // namespace korvo
