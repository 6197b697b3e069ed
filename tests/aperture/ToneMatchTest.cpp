#include "aperture/ToneMatch.h"

#include <gtest/gtest.h>

#include <cmath>

namespace korvo {

namespace {

/// A ramp of all levels with a tone curve over it.
template <typename Curve>
Bitmap ramp(Curve curve)
{
    Bitmap bitmap(256, 4);
    for (int y = 0; y < bitmap.height; ++y)
        for (int x = 0; x < bitmap.width; ++x)
            for (int channel = 0; channel < 4; ++channel)
                bitmap.row(y)[4 * x + channel]
                    = channel == 3 ? 255 : static_cast<std::uint8_t>(std::lround(255 * curve(x / 255.0, y)));
    return bitmap;
}

const auto same = [](double x, int) { return x; };

} // namespace

TEST(ToneMatch, findsTheCurveBetweenTwoRenders)
{
    const auto fit = fitToneCurve(ramp(same), ramp([](double x, int) { return std::pow(x, 0.5); }));
    ASSERT_TRUE(fit);
    ASSERT_EQ(fit->rgb.size(), 17U);
    for (const auto& point : fit->rgb)
        EXPECT_NEAR(point.y, std::pow(point.x, 0.5), 0.01) << point.x;
    EXPECT_TRUE(fit->red.empty());
}

TEST(ToneMatch, theCurveNeverFalls)
{
    // A bright render that turns dark in the middle, and noise from row to row.
    const auto fit = fitToneCurve(ramp(same),
        ramp([](double x, int y) { return 0.3 + 0.5 * x - (x > 0.4 && x < 0.6 ? 0.2 : 0) + 0.02 * y; }));
    ASSERT_TRUE(fit);
    for (std::size_t i = 1; i < fit->rgb.size(); ++i)
        EXPECT_GE(fit->rgb[i].y, fit->rgb[i - 1].y);
}

TEST(ToneMatch, isKeptOnlyWhenItHelps)
{
    EXPECT_FALSE(fitToneCurve(ramp(same), ramp(same)));
    EXPECT_FALSE(fitToneCurve(ramp(same), Bitmap(255, 4)));
    EXPECT_FALSE(fitToneCurve(Bitmap(), Bitmap()));
}

} // namespace korvo
