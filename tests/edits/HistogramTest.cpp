#include "edits/HistogramData.h"

#include <cmath>
#include <gtest/gtest.h>

namespace korvo {

namespace {

/// An image of one colour, which `paint(x, y, pixel)` may change.
template <typename Paint>
Bitmap painted(int width, int height, Paint paint)
{
    Bitmap image(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            std::uint8_t* const pixel = image.row(y) + 4 * x;
            pixel[0] = pixel[1] = pixel[2] = 0;
            pixel[3] = 255;
            paint(x, y, pixel);
        }
    return image;
}

Bitmap plain(int red, int green, int blue)
{
    return painted(1, 1, [&](int, int, std::uint8_t* pixel) {
        pixel[0] = static_cast<std::uint8_t>(red);
        pixel[1] = static_cast<std::uint8_t>(green);
        pixel[2] = static_cast<std::uint8_t>(blue);
    });
}

/// The only bin with a height.
std::size_t onlyBin(const HistogramData::Heights& heights)
{
    const auto peak = std::find(heights.begin(), heights.end(), 1.0);
    EXPECT_EQ(std::count(heights.begin(), heights.end(), 0.0), 63);
    return static_cast<std::size_t>(peak - heights.begin());
}

} // namespace

TEST(Histogram, putsAColorIntoItsBins)
{
    struct Case {
        std::array<int, 3> color;
        std::array<std::size_t, 4> bins;
    };
    for (const auto& [color, bins] : {
             Case{{0, 0, 0}, {0, 0, 0, 0}},
             Case{{255, 255, 255}, {63, 63, 63, 63}},
             Case{{3, 4, 251}, {0, 1, 62, 7}},
             Case{{200, 100, 50}, {50, 25, 12, 31}},
         }) {
        const HistogramData data = histogram(plain(color[0], color[1], color[2]));
        EXPECT_EQ(onlyBin(data.red), bins[0]);
        EXPECT_EQ(onlyBin(data.green), bins[1]);
        EXPECT_EQ(onlyBin(data.blue), bins[2]);
        EXPECT_EQ(onlyBin(data.luminance), bins[3]);
    }
}

TEST(Histogram, scalesEachChannelByItself)
{
    // Red: 1 of 4 white; green: 3 of 4 white.
    const HistogramData data = histogram(painted(4, 1, [](int x, int, std::uint8_t* pixel) {
        pixel[0] = x == 0 ? 255 : 0;
        pixel[1] = x == 0 ? 0 : 255;
    }));
    EXPECT_EQ(data.red[0], 1);
    EXPECT_EQ(data.red[63], std::sqrt(1.0 / 3));
    EXPECT_EQ(data.green[63], 1);
    EXPECT_EQ(data.green[0], std::sqrt(1.0 / 3));
    EXPECT_EQ(data.blue[0], 1);
}

TEST(Histogram, countsAtMost200PixelsOfASide)
{
    struct Case {
        int width, height, across, down;
    };
    for (const auto& [width, height, across, down] : {
             Case{3000, 2000, 200, 133},
             Case{4000, 3000, 200, 150},
             Case{100, 50, 100, 50},
             Case{6240, 10, 199, 1}, // 200 / 6240 * 6240 is less than 200 in doubles
             Case{1, 1000, 1, 200},
         }) {
        SCOPED_TRACE(width);
        // Every counted pixel but the first is white, so the ratio of the heights tells how many there are.
        const HistogramData data
            = histogram(painted(width, height, [&, w = width, h = height](int x, int y, auto* p) {
                  p[0] = x <= w / across / 2 && y <= h / down / 2 ? 0 : 255;
              }));
        EXPECT_NEAR(1 / (data.red[0] * data.red[0]), across * down - 1, 1e-6);
    }
}

TEST(Histogram, isEmptyWithoutABitmap)
{
    EXPECT_EQ(histogram(Bitmap()), emptyHistogram());
    EXPECT_EQ(histogram(Bitmap(0, 5)), HistogramData());
}

} // namespace korvo
