#include "edits/BasicStage.h"

#include "tests/edits/ReferenceStage.h"
#include "tests/support/SixSteps.h"

#include <cmath>
#include <gtest/gtest.h>
#include <hwy/targets.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/task_arena.h>
#include <random>

namespace korvo {

namespace {

using Color = std::array<double, 3>;
using Filters = std::vector<BasicFilter>;
using WB = CITemperatureAndTint;
using HS = CIHighlightShadowAdjust;

Color grey(double value)
{
    return {value, value, value};
}

WB whiteBalance(double temperature, double tint)
{
    return {{temperature * 25 + 6500, tint}, {6500, 0}};
}

LinearImage adjusted(const Filters& filters, const LinearImage& image)
{
    LinearImage result;
    runBasicStage(basicPlan(filters), image, result);
    return result;
}

Color adjusted(const Filters& filters, const Color& color)
{
    return colorAt(adjusted(filters, imageOf({color}, 1)), 0);
}

void expectNear(const LinearImage& a, const LinearImage& b, double tolerance)
{
    ASSERT_TRUE(a.width == b.width && a.height == b.height);
    for (std::size_t i = 0; i < a.pixels(); ++i)
        for (std::size_t c = 0; c < 3; ++c) {
            const double x = colorAt(a, i)[c], y = colorAt(b, i)[c];
            ASSERT_NEAR(x, y, tolerance * std::max(1.0, std::abs(y))) << "pixel " << i << " channel " << c;
        }
}

Bitmap bitmapOf(const std::vector<std::array<int, 4>>& pixels, int width)
{
    Bitmap image(width, static_cast<int>(pixels.size()) / width);
    for (std::size_t i = 0; i < image.bytes.size(); ++i)
        image.bytes[i] = static_cast<std::uint8_t>(pixels[i / 4][i % 4]);
    return image;
}

Bitmap adjusted(const PhotoEdits& edits, const Bitmap& image)
{
    Bitmap result;
    runBasicStage(basicPlan(basicFilters(edits)), image, result);
    return result;
}

/// Noise that is also out of gamut, brighter than white and black; straddling the borders of tiles.
LinearImage noise(int width, int height)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> value(-0.1, 1.4);
    std::vector<Color> colors(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (Color& color : colors)
        color = random() % 8 == 0 ? grey(random() % 2 ? 0 : 0.5)
                                  : Color{value(random), value(random), value(random)};
    return imageOf(colors, width);
}

Bitmap noisyBitmap(int width, int height)
{
    Bitmap image(width, height);
    std::mt19937 random(3);
    for (std::size_t i = 0; i < image.bytes.size(); ++i)
        image.bytes[i] = static_cast<std::uint8_t>(i % 4 == 3 ? 255 : random());
    return image;
}

/// Goes through the instruction sets that this processor has; afterwards the best is chosen again.
class EachTarget {
public:
    ~EachTarget() { choose(0); }

    template <typename Check>
    void run(Check check)
    {
        for (std::int64_t left = hwy::SupportedTargets(); left != 0; left &= left - 1) {
            const std::int64_t target = left & -left;
            SCOPED_TRACE(hwy::TargetName(target));
            choose(target);
            check();
        }
    }

private:
    static void choose(std::int64_t targets)
    {
        hwy::SetSupportedTargetsForTest(targets);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

} // namespace

TEST(BasicStage, appliesEachFilterAsMeasured)
{
    struct Case {
        BasicFilter filter;
        Color in;
        Color out;
    };
    const Case cases[]{
        {CIExposureAdjust{1}, grey(0.18), grey(0.36)},
        {CIExposureAdjust{-1}, {0.5, 0.25, 0.125}, {0.25, 0.125, 0.0625}},
        {CIExposureAdjust{0.5}, {0.2, 0.4, 0.6}, {0.2828, 0.5657, 0.8485}},
        {CIExposureAdjust{2}, {-0.05, 0.1, 1.2}, {-0.2, 0.4, 4.8}},
        {CIExposureAdjust{-0.37}, grey(1), grey(0.7738)},
        {CIColorControls{0.5}, {1, 0, 0}, {0.6063, 0.1063, 0.1063}},
        {CIColorControls{0}, {0.2, 0.4, 0.6}, grey(0.3719)},
        {CIColorControls{1.5}, {0.2, 0.4, 0.6}, {0.1140, 0.4140, 0.7140}},
        {CIColorControls{3}, grey(0.18), grey(0.18)},
        {CIColorControls{2}, {-0.05, 0.1, 1.2}, {-0.2475, 0.0525, 2.2525}},
        {CIColorControls{1.7}, {0, 1, 0}, {-0.5006, 1.1994, -0.5006}},
        {CIVibrance{1}, grey(0.18), grey(0.18)},
        {CIVibrance{1}, grey(0), grey(0)},
        {CIVibrance{1}, {1, 0, 0}, {1, 0, 0}},
        {CIVibrance{0.5}, {0.242, 0.456, 0.716}, {0.2104, 0.4605, 0.7645}},
        {CIVibrance{0.5}, {0.745, 0.413, 0.262}, {0.7642, 0.4088, 0.2471}},
        {CIVibrance{-0.5}, {0.242, 0.456, 0.716}, {0.2736, 0.4515, 0.6675}},
        {CIVibrance{1}, {0.102, 0.188, 0.032}, {0.0924, 0.1930, 0.0105}},
        {CIVibrance{1}, {0.4, 0.35, 0.3}, {0.4214, 0.3465, 0.2717}},
        {CIVibrance{1}, {-0.05, 0.1, 1.2}, {-0.05, 0.1, 1.2}},
        {CIVibrance{0.5}, {2.42, 4.56, 7.16}, {2.1035, 4.6052, 7.6445}},
        {whiteBalance(10, 0), grey(1), {1.0197, 0.9978, 0.9646}},
        {whiteBalance(10, 0), {0.2, 0.4, 0.6}, {0.2068, 0.3994, 0.5797}},
        {whiteBalance(-10, 0), grey(1), {0.9785, 1.0025, 1.0398}},
        {whiteBalance(-10, 0), {0.2, 0.4, 0.6}, {0.1926, 0.4007, 0.6229}},
        {whiteBalance(100, 0), grey(1), {1.1422, 0.9872, 0.7658}},
        {whiteBalance(100, 0), {0.2, 0.4, 0.6}, {0.2483, 0.3964, 0.4654}},
        {whiteBalance(-100, 0), grey(1), {0.6453, 1.0531, 1.8588}},
        {whiteBalance(-100, 0), {0.2, 0.4, 0.6}, {0.0740, 0.4164, 1.0943}},
        {whiteBalance(0, 20), grey(1), {1.0885, 0.9665, 1.0772}},
        {whiteBalance(0, -20), {0.2, 0.4, 0.6}, {0.1695, 0.4140, 0.5599}},
        {whiteBalance(52, -12), grey(1), {1.0269, 1.0129, 0.8217}},
        {whiteBalance(52, -12), {0.2, 0.4, 0.6}, {0.2093, 0.4059, 0.4976}},
        {whiteBalance(10, 0), {-0.05, 0.1, 1.2}, {-0.0472, 0.1005, 1.1617}},
        {HS{0.5, {}}, grey(0.18), grey(0.1680)},
        {HS{0.5, {}}, grey(0.8), grey(0.6727)},
        {HS{0.3, {}}, grey(0.8), grey(0.6277)},
        {HS{1.5, {}}, grey(0.8), grey(0.9514)},
        {HS{{}, 0.3}, grey(0.02), grey(0.0314)},
        {HS{{}, 1}, grey(0.02), grey(0.0903)},
        {HS{{}, -1}, grey(0.02), grey(0.0044)},
        {HS{0.5, 0.3}, {0.6, 0.3, 0.1}, {0.6301, 0.3151, 0.1050}},
        {HS{0.3, 1}, grey(2), grey(1.5692)},
        {HS{0.5, 0.5}, {-0.05, 0.1, 1.2}, {-0.0807, 0.1614, 1.9372}},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const Color out = adjusted(Filters{cases[i].filter}, cases[i].in);
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_NEAR(out[c], cases[i].out[c], 1e-4) << "case " << i << " channel " << c;
    }
}

TEST(BasicStage, sharpensAnEdgeADotAndTheBorder)
{
    const auto rows = [](std::vector<Color> row) {
        const std::size_t width = row.size();
        for (std::size_t i = 0; i < 6 * width; ++i)
            row.push_back(row[i % width]);
        return imageOf(row, static_cast<int>(width));
    };
    const auto sharpened = [](double sharpness, const LinearImage& image) {
        return adjusted(Filters{CISharpenLuminance{sharpness}}, image);
    };
    struct Edge {
        double sharpness;
        std::vector<double> in, out;
    };
    for (const auto& [sharpness, in, out] : {
             Edge{0.25, {0.1, 0.1, 0.1, 0.1, 0.5, 0.5, 0.5, 0.5},
                 {0.1, 0.0999, 0.0964, 0.0700, 0.5756, 0.5082, 0.5002, 0.5}},
             Edge{0.5, {0.1, 0.1, 0.1, 0.1, 0.5, 0.5, 0.5, 0.5},
                 {0.1, 0.0998, 0.0928, 0.0454, 0.6565, 0.5165, 0.5005, 0.5}},
             Edge{0.25, {0.4, 0.2, 0.2, 0.2, 0.2, 0.2}, {0.4315, 0.1787, 0.1976, 0.1999, 0.2, 0.2}},
             Edge{0.5, {0.37, 0.37, 0.37}, {0.37, 0.37, 0.37}},
         }) {
        std::vector<Color> row;
        for (const double value : in)
            row.push_back(grey(value));
        const LinearImage result = sharpened(sharpness, rows(row));
        for (std::size_t i = 0; i < result.pixels(); ++i)
            EXPECT_NEAR(result.green[i], out[i % out.size()], 1e-4) << sharpness << " pixel " << i;
    }

    std::vector<Color> dot(49, grey(0.5));
    dot[24] = {0.05, 0.1, 0.02};
    const LinearImage floor = sharpened(0.5, imageOf(dot, 7));
    EXPECT_NEAR(floor.red[24], 0.0125, 1e-4);
    EXPECT_NEAR(floor.green[24], 0.0250, 1e-4);
    EXPECT_NEAR(floor.green[25], 0.5676, 1e-4);
    EXPECT_NEAR(floor.green[32], 0.5330, 1e-4);

    std::vector<Color> spark(49, grey(0));
    spark[24] = {1, 0.5, 0.25};
    const LinearImage ceiling = sharpened(0.5, imageOf(spark, 7));
    EXPECT_NEAR(ceiling.red[24], 3.1581, 1e-4);
    EXPECT_NEAR(ceiling.blue[24], 0.7895, 1e-4);
    EXPECT_EQ(ceiling.red[25], 0);
}

TEST(BasicStage, rendersBytesAsAWhole)
{
    struct Case {
        PhotoEdits edits;
        std::array<int, 3> in, out;
    };
    PhotoEdits fiveOfThem = sixSteps;
    fiveOfThem.sharpness = 0;
    const Case cases[]{
        {{.exposure = 1}, {118, 118, 118}, {162, 162, 162}},
        {{.saturation = 1.5}, {90, 140, 200}, {46, 141, 223}},
        {{.vibrance = 0.5}, {224, 172, 140}, {227, 171, 136}},
        {{.temperature = 10}, {200, 200, 200}, {202, 200, 197}},
        {{.temperature = -10}, {200, 200, 200}, {198, 200, 204}},
        {{.tint = 20}, {200, 200, 200}, {208, 197, 207}},
        {{.highlights = 0.5}, {230, 230, 230}, {213, 213, 213}},
        {{.shadows = 0.2}, {30, 30, 30}, {39, 39, 39}},
        {{.highlights = 0.9, .recovery = 0.6}, {255, 255, 255}, {229, 229, 229}},
        {fiveOfThem, {90, 140, 200}, {95, 169, 253}},
        {sixSteps, {90, 140, 200}, {95, 169, 253}}, // a flat area has nothing to sharpen
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const auto& [edits, in, out] = cases[i];
        const Bitmap result = adjusted(edits, bitmapOf({{in[0], in[1], in[2], 255}}, 1));
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_NEAR(result.bytes[c], out[c], 1) << "case " << i << " channel " << c;
        EXPECT_EQ(result.bytes[3], 255);
    }
}

TEST(BasicStage, agreesWithTheReferenceOnEveryInstructionSet)
{
    const LinearImage small = noise(53, 11);
    const LinearImage tiled = noise(2048 + 21, 128 + 9); // two tiles across and down, with odd ends
    const Bitmap bytes = noisyBitmap(515, 11);
    Bitmap expected, result;
    runBasicStage(basicPlan({}), bytes, expected);
    ASSERT_EQ(expected, bytes) << "decoding and encoding must be exact";

    // Each combination of the steps that are compiled separately.
    for (int steps = 0; steps < 8; ++steps) {
        Filters filters{CIExposureAdjust{0.3}, CIColorControls{1.3}};
        if (steps & 1)
            filters.emplace_back(CIVibrance{0.6});
        filters.emplace_back(whiteBalance(-20, 8));
        if (steps & 2)
            filters.emplace_back(HS{0.4, 0.6});
        if (steps & 4)
            filters.emplace_back(CISharpenLuminance{0.3});
        const LinearImage& image = steps == 7 ? tiled : small;
        const LinearImage reference = referenceStage(filters, image);
        EachTarget().run([&] { expectNear(adjusted(filters, image), reference, 2e-5); });
    }

    const BasicPlan plan = basicPlan(basicFilters(sixSteps));
    runBasicStage(plan, bytes, expected);
    EachTarget().run([&] {
        runBasicStage(plan, bytes, result);
        for (std::size_t i = 0; i < result.bytes.size(); ++i)
            ASSERT_NEAR(result.bytes[i], expected.bytes[i], 1) << i;
    });
}

TEST(BasicStage, doesNotDependOnTheNumberOfThreads)
{
    const BasicPlan plan = basicPlan(basicFilters(sixSteps));
    const LinearImage image = noise(2100, 400);
    const tbb::global_control allowed(tbb::global_control::max_allowed_parallelism, 5);
    const auto onThreads = [&](int count) {
        LinearImage result;
        tbb::task_arena(count).execute([&] { runBasicStage(plan, image, result); });
        return result;
    };
    const LinearImage one = onThreads(1);
    EXPECT_EQ(onThreads(2), one);
    EXPECT_EQ(onThreads(5), one);
}

TEST(BasicStage, keepsAlphaAndAdjustsWhatItCovers)
{
    // Premultiplied: half-transparent (200, 100, 50), and nothing at all.
    const Bitmap image = bitmapOf({{100, 50, 25, 128}, {0, 0, 0, 0}, {200, 100, 50, 255}}, 3);
    const Bitmap same = adjusted(PhotoEdits{}, image);
    EXPECT_EQ(same, image);

    const Bitmap brighter = adjusted(PhotoEdits{.exposure = 0.5}, image);
    const Bitmap opaque = adjusted(PhotoEdits{.exposure = 0.5}, bitmapOf({{199, 100, 50, 255}}, 1));
    for (std::size_t c = 0; c < 3; ++c) {
        EXPECT_NEAR(brighter.bytes[c], opaque.bytes[c] * 128 / 255.0, 1) << c;
        EXPECT_EQ(brighter.bytes[4 + c], 0);
    }
    EXPECT_EQ(brighter.bytes[3], 128);
    EXPECT_EQ(brighter.bytes[7], 0);

    LinearImage linear(1, 1, AlphaPlane::present);
    linear.red = linear.green = linear.blue = {0.25F};
    linear.alpha = {0.5F};
    LinearImage adjustedLinear;
    Bitmap encoded;
    const BasicPlan plan = basicPlan({CIExposureAdjust{1}});
    runBasicStage(plan, linear, adjustedLinear);
    runBasicStage(plan, linear, encoded);
    EXPECT_EQ(adjustedLinear.alpha, linear.alpha);
    EXPECT_EQ(adjustedLinear.red[0], 0.5F);
    EXPECT_EQ(encoded, bitmapOf({{94, 94, 94, 128}}, 1)); // 188 at half
}

TEST(BasicStage, keepsWhatItPromisesForAllColors)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> value(0, 1), amount(-1, 1);
    for (int i = 0; i < 200; ++i) {
        const Color c{value(random), value(random), value(random)};
        const double a = amount(random), b = amount(random);
        const Filters saturation{CIColorControls{1 + a}}, vibrance{CIVibrance{a}}, tone{HS{1 + a, b}};
        EXPECT_NEAR(luminance(adjusted(saturation, c)), luminance(c), 1e-6);
        EXPECT_NEAR(luminance(adjusted(vibrance, c)), luminance(c), 1e-6);
        for (const auto& filters : {saturation, vibrance, tone}) {
            const Color out = adjusted(filters, grey(c[0]));
            EXPECT_NEAR(out[0], out[1], 1e-6);
            EXPECT_NEAR(out[1], out[2], 1e-6);
        }
        const Color bright{8 * c[0], 8 * c[1], 8 * c[2]};
        EXPECT_NEAR(adjusted(vibrance, bright)[0], 8 * adjusted(vibrance, c)[0], 1e-5);
        EXPECT_LT(adjusted(tone, grey(c[0]))[0], adjusted(tone, grey(c[0] + 0.01))[0]);
    }
}

TEST(BasicStage, sharpensLessInSmallRenders)
{
    const Filters filters{CISharpenLuminance{0.5}};
    EXPECT_TRUE(basicPlan(filters, 0.4).isIdentity()); // the neighbours weigh nothing
    EXPECT_GT(basicPlan(filters, 0.5).blur[0], basicPlan(filters, 1).blur[0]);
    EXPECT_EQ(basicPlan(filters, 2).blur, basicPlan(filters, 1).blur);
}

TEST(BasicStage, boundsAmountsThatNoSliderGives)
{
    CIColorControls controls;
    CISharpenLuminance sharpening;
    controls.inputSaturation = sharpening.inputSharpness = 1e300;
    const auto plan = basicPlan({controls, sharpening});
    EXPECT_TRUE(std::isfinite(plan.sharpness));
    for (const float entry : plan.before)
        EXPECT_TRUE(std::isfinite(entry));
}

TEST(BasicStage, takesImagesWithoutPixels)
{
    Bitmap result(4, 4);
    runBasicStage(basicPlan(basicFilters(sixSteps)), Bitmap(), result);
    EXPECT_EQ(result, Bitmap());
}

} // namespace korvo
