#include "edits/QuickBrush.h"

#include <cmath>
#include <gtest/gtest.h>

namespace korvo {

TEST(QuickBrush, slidersWriteTheirFieldAndReadItBack)
{
    struct Row {
        QuickBrush brush;
        std::string_view title, label;
        double lower, upper;
        void (*expected)(PhotoEdits&, double v);
    };
    using E = PhotoEdits;
    const auto radius = [](E& edits, double v) { edits.noiseReduction = NoiseReduction{v, 0}; };
    const std::vector<Row> rows = {
        {QuickBrush::skinSmoothing, "Skin Smoothing", "Amount", 0, 6, radius},
        {QuickBrush::dodge, "Dodge (Lighten)", "Amount", 0, 2, [](E& e, double v) { e.exposure = v; }},
        {QuickBrush::burn, "Burn (Darken)", "Amount", 0, 2, [](E& e, double v) { e.exposure = -v; }},
        {QuickBrush::polarize, "Polarize (Multiply)", "Intensity", 0, 1,
            [](E& e, double v) { e.polarize = v; }},
        {QuickBrush::intensifyContrast, "Intensify Contrast (Overlay)", "Intensity", 0, 1,
            [](E& e, double v) { e.intensifyContrast = v; }},
        {QuickBrush::saturate, "Saturate", "Amount", 1, 3, [](E& e, double v) { e.saturation = v; }},
        {QuickBrush::desaturate, "Desaturate", "Amount", 0, 1, [](E& e, double v) { e.saturation = 1 - v; }},
        {QuickBrush::sharpen, "Sharpen", "Intensity", 0, 1, [](E& e, double v) { e.sharpness = v; }},
        {QuickBrush::blur, "Blur", "Amount", 0, 10, radius},
        {QuickBrush::noiseReduction, "Noise Reduction", "Radius", 0, 4, radius},
        {QuickBrush::definition, "Definition", "Amount", 0, 1, [](E& e, double v) { e.definition = v; }},
        {QuickBrush::vibrancy, "Vibrancy", "Amount", 0, 1, [](E& e, double v) { e.vibrance = v; }},
        {QuickBrush::contrast, "Contrast", "Amount", 0, 1, [](E& e, double v) { e.contrast = 1 + v; }},
    };
    ASSERT_EQ(rows.size(), casesOf<QuickBrush>.size());
    for (const auto& row : rows) {
        SCOPED_TRACE(row.title);
        const auto& control = slider(row.brush);
        EXPECT_EQ(title(row.brush), row.title);
        EXPECT_EQ(control.label, row.label);
        EXPECT_EQ(control.lower, row.lower);
        EXPECT_EQ(control.upper, row.upper);
        EXPECT_EQ(control.neutral(), row.lower);
        for (const double v : {row.lower, row.lower + 0.75, row.upper}) {
            PhotoEdits edits, expected;
            control.setValue(edits, v);
            row.expected(expected, v);
            EXPECT_EQ(edits, expected);
            EXPECT_EQ(control.value(edits), v);
        }
        const double untouched = control.value(PhotoEdits());
        EXPECT_EQ(untouched, row.brush == QuickBrush::saturate ? 1 : 0) << "no effect yet";
        EXPECT_FALSE(std::signbit(untouched)) << "shown as -0";
    }
}

TEST(QuickBrush, theNoiseRadiusKeepsTheEdgeDetail)
{
    PhotoEdits edits;
    edits.noiseReduction = NoiseReduction{1, 0.5};
    slider(QuickBrush::blur).setValue(edits, 9);
    EXPECT_EQ(edits.noiseReduction, (NoiseReduction{9, 0.5}));
}

} // namespace korvo
