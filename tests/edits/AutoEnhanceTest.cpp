#include "edits/AutoEnhance.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace korvo {

namespace {

using Statistics = AutoEnhance::Statistics;
using Values = AutoEnhance::Values;
using Fields = AutoEnhance::Fields;

Bitmap bitmapOf(const std::vector<std::array<int, 3>>& colors)
{
    Bitmap image(static_cast<int>(colors.size()), 1);
    for (std::size_t i = 0; i < image.bytes.size(); ++i)
        image.bytes[i] = static_cast<std::uint8_t>(i % 4 == 3 ? 255 : colors[i / 4][i % 4]);
    return image;
}

} // namespace

TEST(AutoEnhance, mapsEachStatisticToItsValue)
{
    const auto of = [](double Statistics::*statistic, double Values::*value) {
        return [=](double x) {
            Statistics statistics;
            statistics.*statistic = x;
            return AutoEnhance::values(statistics).*value;
        };
    };
    struct Mapping {
        const char* name;
        std::function<double(double)> map;
        std::vector<std::pair<double, double>> cases;
    };
    const Mapping mappings[]{
        {"exposure", of(&Statistics::meanLuminance, &Values::exposure),
            {{0.42, 0}, {0.21, 1}, {0.05, 1.25}, {0.38, 0.14}, {0.40, 0}, {0.44, 0}, {0.46, -0.13},
                {0.005, 0}, {0.01, 0}, {1, -1.25}, {0.999, -1.25}, {0.17658824720328006, 1.25}}},
        {"contrast", of(&Statistics::highLuminance, &Values::contrast),
            {{0.35, 1.18}, {0.04, 1}, {0.05, 1}, {0.7, 1}, {0.65, 1}, {0.06, 1.3}, {0.2, 1.27}}},
        {"vibrance", of(&Statistics::meanSaturation, &Values::vibrance),
            {{0.02, 0}, {0.03, 0}, {0.3, 0}, {0.22, 0}, {0.12, 0.2}, {0.04, 0.35}}},
        {"highlights", of(&Statistics::highlightFraction, &Values::highlights),
            {{0.02, 0}, {0.03, 0.13}, {0.2, 0.6}, {0.1, 0.34}}},
        {"shadows", of(&Statistics::shadowFraction, &Values::shadows),
            {{0.04, 0}, {0.05, 0.13}, {0.1, 0.25}, {0.5, 0.5}}},
    };
    for (const auto& [name, map, cases] : mappings)
        for (const auto& [statistic, value] : cases)
            EXPECT_EQ(map(statistic), value) << name << " of " << statistic;
}

TEST(AutoEnhance, selectsWhatSortingWouldFind)
{
    std::mt19937 random(5);
    for (const std::size_t count : {1U, 2U, 19U, 20U, 21U, 1000U, 4099U}) {
        std::vector<std::array<int, 3>> colors(count);
        for (auto& color : colors) {
            const int base = static_cast<int>(random() % 256);
            color = {base, random() % 2 ? base : 255 - base, base / 2};
        }
        std::vector<double> sorted;
        for (const auto& [r, g, b] : colors)
            sorted.push_back(0.2126 * (r / 255.0) + 0.7152 * (g / 255.0) + 0.0722 * (b / 255.0));
        std::sort(sorted.begin(), sorted.end());
        const auto statistics = AutoEnhance::statistics(bitmapOf(colors));
        ASSERT_TRUE(statistics);
        EXPECT_EQ(statistics->lowLuminance, sorted[count / 20]) << count;
        EXPECT_EQ(statistics->highLuminance, sorted[19 * count / 20]) << count;
    }
}

TEST(AutoEnhance, countsSaturationAndTheDarkAndTheBright)
{
    const auto statistics = *AutoEnhance::statistics(bitmapOf({
        {0, 0, 0}, // dark, without saturation
        {255, 255, 255}, // bright
        {200, 100, 100}, // half saturated
        {247, 252, 167}, // 0.96 on paper, a little more in doubles
        {8, 3, 88}, // 0.04 on paper, and in doubles not below it
    }));
    EXPECT_DOUBLE_EQ(statistics.shadowFraction, 0.2);
    EXPECT_DOUBLE_EQ(statistics.highlightFraction, 0.4);
    EXPECT_DOUBLE_EQ(statistics.meanSaturation, (0.5 + 85 / 252.0 + 85 / 88.0) / 5);
    EXPECT_FALSE(AutoEnhance::statistics(Bitmap()));
}

TEST(AutoEnhance, appliesTheFieldsNamed)
{
    const Values values{.exposure = 0.5, .contrast = 1.1, .vibrance = 0.2, .highlights = 0.3};
    PhotoEdits edits{.exposure = 2, .tint = 4, .highlights = 0.1, .shadows = 0.1};
    AutoEnhance::apply(values, Fields::panel, edits);
    EXPECT_EQ(edits,
        (PhotoEdits{.exposure = 0.5,
            .contrast = 1.1,
            .vibrance = 0.2,
            .tint = 4,
            .highlights = 0.1,
            .shadows = 0.1}));
    AutoEnhance::apply(values, Fields::highlights | Fields::shadows, edits);
    EXPECT_EQ(edits.highlights, 0.3);
    EXPECT_EQ(edits.shadows, std::nullopt);

    PhotoEdits untouched;
    AutoEnhance::apply(Values(), Fields::all, untouched);
    EXPECT_TRUE(isIdentity(untouched));
}

} // namespace korvo
