#include "bench/edits/PlainRender.h"

#include "platform/Srgb.h"

#include <algorithm>
#include <array>
#include <thread>

namespace korvo::bench {

namespace {

using Row = std::vector<float>;

constexpr std::size_t steps = 16384;

const std::vector<std::uint8_t>& coarseCodes()
{
    static const auto codes = [] {
        std::vector<std::uint8_t> made(steps + 1);
        for (std::size_t i = 0; i <= steps; ++i)
            made[i] = srgbOfLinear(static_cast<float>(i) / steps);
        return made;
    }();
    return codes;
}

float luma(float r, float g, float b)
{
    return 0.2126F * r + 0.7152F * g + 0.0722F * b;
}

void adjust(float* __restrict red, float* __restrict green, float* __restrict blue, int count)
{
    constexpr float exposure = 1.4F, saturation = 1.2F, vibrance = 0.3F, shadows = 0.3F, highlights = 0.4F;
    for (int i = 0; i < count; ++i) {
        float r = red[i] * exposure, g = green[i] * exposure, b = blue[i] * exposure;
        const float y = luma(r, g, b);
        r = y + (r - y) * saturation;
        g = y + (g - y) * saturation;
        b = y + (b - y) * saturation;
        const float most = std::max(r, std::max(g, b)), least = std::min(r, std::min(g, b));
        const float k = 1 + vibrance * (1 - (most - least) / (most + 1e-4F));
        r = y + (r - y) * k;
        g = y + (g - y) * k;
        b = y + (b - y) * k;
        const float r2 = 1.05F * r - 0.02F * g - 0.01F * b, g2 = g - 0.01F * r, b2 = 0.02F * g + 0.92F * b;
        const float light = std::min(1.0F, std::max(0.0F, luma(r2, g2, b2))), dark = 1 - light;
        const float lift = 4 * shadows * dark * dark * dark * dark * light / (light + 0.05F);
        const float gain = 1 + lift - 0.5F * highlights * light * light * light;
        red[i] = r2 * gain;
        green[i] = g2 * gain;
        blue[i] = b2 * gain;
    }
}

/// The last three rows, encoded, and their brightness.
struct Encoded {
    explicit Encoded(std::size_t width) : red(width), green(width), blue(width), brightness(width) { }

    Row red, green, blue, brightness;
};

void encode(Row& row, Row& result, std::size_t width)
{
    const std::uint8_t* const codes = coarseCodes().data();
    for (std::size_t x = 0; x < width; ++x)
        result[x] = codes[static_cast<int>(std::min(1.0F, std::max(0.0F, row[x])) * steps)];
}

void prepare(const std::uint8_t* rgba, std::size_t width, Encoded& result)
{
    thread_local Row red, green, blue;
    red.resize(width), green.resize(width), blue.resize(width);
    const float* const linear = linearOfSrgb().data();
    for (std::size_t x = 0; x < width; ++x) {
        red[x] = linear[rgba[4 * x]];
        green[x] = linear[rgba[4 * x + 1]];
        blue[x] = linear[rgba[4 * x + 2]];
    }
    adjust(red.data(), green.data(), blue.data(), static_cast<int>(width));
    encode(red, result.red, width);
    encode(green, result.green, width);
    encode(blue, result.blue, width);
    for (std::size_t x = 0; x < width; ++x)
        result.brightness[x] = 0.299F * result.red[x] + 0.587F * result.green[x] + 0.114F * result.blue[x];
}

void sharpen(
    const Encoded& above, const Encoded& row, const Encoded& below, std::size_t width, std::uint8_t* rgba)
{
    const float *a = above.brightness.data(), *m = row.brightness.data(), *b = below.brightness.data();
    for (std::size_t x = 0; x < width; ++x) {
        float more = 0.5F;
        if (x > 0 && x < width - 1) {
            const float soft = (a[x - 1] + a[x + 1] + b[x - 1] + b[x + 1]
                                   + 2 * (a[x] + m[x - 1] + m[x + 1] + b[x]) + 4 * m[x])
                / 16;
            more += (m[x] - soft) * 0.4F;
        }
        rgba[4 * x] = static_cast<std::uint8_t>(std::min(255.0F, std::max(0.0F, row.red[x] + more)));
        rgba[4 * x + 1] = static_cast<std::uint8_t>(std::min(255.0F, std::max(0.0F, row.green[x] + more)));
        rgba[4 * x + 2] = static_cast<std::uint8_t>(std::min(255.0F, std::max(0.0F, row.blue[x] + more)));
        rgba[4 * x + 3] = 255;
    }
}

void renderRows(const Bitmap& image, Bitmap& result, int from, int to)
{
    const auto width = static_cast<std::size_t>(image.width);
    std::array<Encoded, 3> rows{Encoded(width), Encoded(width), Encoded(width)};
    const auto row = [&](int y) -> Encoded& { return rows[static_cast<std::size_t>(y + 3) % 3]; };
    prepare(image.row(std::max(0, from - 1)), width, row(from - 1));
    prepare(image.row(from), width, row(from));
    for (int y = from; y < to; ++y) {
        prepare(image.row(std::min(image.height - 1, y + 1)), width, row(y + 1));
        sharpen(row(y - 1), row(y), row(y + 1), width, result.row(y));
    }
}

} // namespace

void plainRender(const Bitmap& image, Bitmap& result)
{
    std::jthread other([&] { renderRows(image, result, image.height / 2, image.height); });
    renderRows(image, result, 0, image.height / 2);
}

void copyFloats(const std::vector<float>& from, std::vector<float>& to)
{
    const auto half = static_cast<std::ptrdiff_t>(from.size() / 2);
    const auto copy = [&](auto begin, auto end, auto target) {
        std::transform(begin, end, target, [](float value) { return value * 2; });
    };
    std::jthread other([&] { copy(from.begin() + half, from.end(), to.begin() + half); });
    copy(from.begin(), from.begin() + half, to.begin());
}

} // namespace korvo::bench
