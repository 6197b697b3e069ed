#include "edits/BasicStage.h"

#include "edits/RowKernels.h"

#include <algorithm>
#include <array>
#include <oneapi/tbb/parallel_for.h>

namespace korvo {

namespace {

// A tile's rows stay in the processor's second-level cache from their decoding to their encoding.
constexpr int tileWidth = 2048;
constexpr int tileHeight = 128;
constexpr int reach = sharpeningReach;

/// A part of a row: where it begins in the image, and its length.
struct Span {
    int x;
    int y;
    std::size_t count;
};

/// The rows that a tile is worked on with, each used again a few rows on.
class TileRows {
public:
    TileRows() : floats_(stride * (3 * colorRows + rootRows + 1)) { }

    ColorRow color(int y)
    {
        const int place = 3 * (y % colorRows);
        return {line(place), line(place + 1), line(place + 2)};
    }
    float* root(int y) { return line(3 * colorRows + y % rootRows); }
    float* blurred() { return line(3 * colorRows + rootRows); }

private:
    static constexpr int colorRows = reach + 1;
    static constexpr int rootRows = 2 * reach + 1;
    static constexpr std::size_t stride = tileWidth + 2 * reach + 2 * rowSlack;

    float* line(int index) { return floats_.data() + stride * static_cast<std::size_t>(index) + rowSlack; }

    PixelBuffer<float> floats_;
};

ColorRow operator+(const ColorRow& row, std::size_t offset)
{
    return {row.red + offset, row.green + offset, row.blue + offset};
}

/// Adjusts the pixels from (left, top) to (right, bottom), exclusive. `load` fills a span's row from the
/// image, `store` takes it to the result.
template <typename Load, typename Store>
class TileRun {
public:
    TileRun(const BasicPlan& plan, int width, int height, const Load& load, const Store& store)
        : plan_(plan), width_(width), height_(height), load_(load), store_(store)
    { }

    void operator()(int left, int top) const
    {
        TileRows rows;
        const int right = std::min(left + tileWidth, width_), bottom = std::min(top + tileHeight, height_);
        const int first = std::max(left - apron_, 0), last = std::min(right + apron_, width_);
        const auto wide = static_cast<std::size_t>(last - first);
        const auto margin = static_cast<std::size_t>(left - first);
        const auto kept = static_cast<std::size_t>(right - left);
        int next = std::max(top - apron_, 0);
        for (int y = top; y < bottom; ++y) {
            for (; next <= std::min(y + apron_, height_ - 1); ++next) {
                load_(Span{first, next, wide}, rows.color(next));
                kernels_.adjust(plan_, wide, rows.color(next), rows.root(next));
            }
            const ColorRow row = rows.color(y) + margin;
            if (plan_.hasSharpening) {
                blur(rows, y, wide);
                kernels_.sharpen(plan_, rows.root(y) + margin, rows.blurred() + margin, kept, row);
            }
            store_(Span{left, y, kept}, row);
        }
    }

private:
    /// Blurs across the rows around y; beyond the image its borders go on.
    void blur(TileRows& rows, int y, std::size_t count) const
    {
        const float* roots[2 * reach + 1];
        for (int i = -reach; i <= reach; ++i)
            roots[i + reach] = rows.root(std::clamp(y + i, 0, height_ - 1));
        float* const blurred = rows.blurred();
        kernels_.blurAcross(plan_, roots, count, blurred);
        std::fill(blurred - reach, blurred, blurred[0]);
        std::fill(blurred + count, blurred + count + reach, blurred[count - 1]);
    }

    const BasicPlan& plan_;
    int width_;
    int height_;
    const Load& load_;
    const Store& store_;
    const RowKernels& kernels_ = rowKernels();
    int apron_ = plan_.hasSharpening ? reach : 0;
};

template <typename Load, typename Store>
void runTiles(const BasicPlan& plan, int width, int height, const Load& load, const Store& store)
{
    const TileRun<Load, Store> run(plan, width, height, load, store);
    const int across = (width + tileWidth - 1) / tileWidth, down = (height + tileHeight - 1) / tileHeight;
    tbb::parallel_for(0, across * down, [&](int i) { run(i % across * tileWidth, i / across * tileHeight); });
}

void unpremultiply(const std::uint8_t* rgba, std::size_t count, std::uint8_t* straight)
{
    for (std::size_t i = 0; i < 4 * count; ++i) {
        const unsigned alpha = rgba[i | 3];
        const unsigned color = alpha == 0 ? 0 : (rgba[i] * 255U + alpha / 2) / alpha;
        straight[i] = static_cast<std::uint8_t>(std::min(color, 255U));
    }
}

void premultiply(std::uint8_t* rgba, std::size_t count)
{
    for (std::size_t i = 0; i < 4 * count; ++i)
        if (i % 4 != 3)
            rgba[i] = static_cast<std::uint8_t>((rgba[i] * unsigned{rgba[i | 3]} + 127) / 255);
}

void loadBytes(const std::uint8_t* rgba, std::size_t count, const ColorRow& row)
{
    const RowKernels& kernels = rowKernels();
    if (kernels.decode(rgba, count, row))
        return;
    std::array<std::uint8_t, 4 * (tileWidth + 2 * reach)> straight;
    unpremultiply(rgba, count, straight.data());
    kernels.decode(straight.data(), count, row);
}

/// `alpha` is a row of RGBA bytes.
void storeBytes(const ColorRow& row, const std::uint8_t* alpha, std::size_t count, std::uint8_t* rgba)
{
    if (!rowKernels().encode(row, alpha, count, rgba))
        premultiply(rgba, count);
}

std::uint8_t* at(Bitmap& image, const Span& span)
{
    return image.row(span.y) + 4 * static_cast<std::size_t>(span.x);
}

const std::uint8_t* at(const Bitmap& image, const Span& span)
{
    return image.row(span.y) + 4 * static_cast<std::size_t>(span.x);
}

std::size_t at(const LinearImage& image, const Span& span)
{
    return image.offset(span.y) + static_cast<std::size_t>(span.x);
}

auto loadFrom(const Bitmap& image)
{
    return [&](const Span& span, const ColorRow& row) { loadBytes(at(image, span), span.count, row); };
}

auto loadFrom(const LinearImage& image)
{
    return [&](const Span& span, const ColorRow& row) {
        const std::size_t place = at(image, span);
        std::copy_n(image.red.data() + place, span.count, row.red);
        std::copy_n(image.green.data() + place, span.count, row.green);
        std::copy_n(image.blue.data() + place, span.count, row.blue);
    };
}

/// Writes a span's alpha as bytes, its colours as anything.
void storeAlpha(const LinearImage& image, const Span& span, std::uint8_t* rgba)
{
    for (std::size_t i = 0; i < span.count; ++i) {
        const float alpha = image.isOpaque() ? 1 : image.alpha[at(image, span) + i];
        rgba[4 * i + 3] = static_cast<std::uint8_t>(std::clamp(alpha, 0.0F, 1.0F) * 255 + 0.5F);
    }
}

template <typename Image>
void makeRoom(Image& result, int width, int height)
{
    if (result.width != width || result.height != height)
        result = Image(width, height);
}

} // namespace

void runBasicStage(const BasicPlan& plan, const Bitmap& image, Bitmap& result)
{
    makeRoom(result, image.width, image.height);
    const auto store = [&](const Span& span, const ColorRow& row) {
        storeBytes(row, at(image, span), span.count, at(result, span));
    };
    runTiles(plan, image.width, image.height, loadFrom(image), store);
}

void runBasicStage(const BasicPlan& plan, const LinearImage& image, LinearImage& result)
{
    makeRoom(result, image.width, image.height);
    result.alpha = image.alpha;
    const auto store = [&](const Span& span, const ColorRow& row) {
        const std::size_t place = at(result, span);
        std::copy_n(row.red, span.count, result.red.data() + place);
        std::copy_n(row.green, span.count, result.green.data() + place);
        std::copy_n(row.blue, span.count, result.blue.data() + place);
    };
    runTiles(plan, image.width, image.height, loadFrom(image), store);
}

void runBasicStage(const BasicPlan& plan, const LinearImage& image, Bitmap& result)
{
    makeRoom(result, image.width, image.height);
    const auto store = [&](const Span& span, const ColorRow& row) {
        std::uint8_t* const rgba = at(result, span);
        storeAlpha(image, span, rgba);
        storeBytes(row, rgba, span.count, rgba);
    };
    runTiles(plan, image.width, image.height, loadFrom(image), store);
}

} // namespace korvo
