#include "edits/BasicFilters.h"

#include "edits/AdjustmentBrick.h"
#include "edits/DisabledBricks.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(BasicFilters, runOnlyForWhatChangesTheImage)
{
    using HS = CIHighlightShadowAdjust;
    struct Case {
        const char* what;
        PhotoEdits edits;
        std::vector<BasicFilter> filters;
    };
    const Case cases[]{
        {"the default", {}, {}},
        {"neutral values that are set", {.highlights = 0, .shadows = 0, .recovery = 0}, {}},
        {"exposure", {.exposure = -1.5}, {CIExposureAdjust{-1.5}}},
        {"saturation without contrast", {.contrast = 1.2, .saturation = 0}, {CIColorControls{0}}},
        {"vibrance", {.vibrance = -0.25}, {CIVibrance{-0.25}}},
        {"temperature", {.temperature = 10}, {CITemperatureAndTint{{6750, 0}, {6500, 0}}}},
        {"tint", {.tint = -4}, {CITemperatureAndTint{{6500, -4}, {6500, 0}}}},
        {"highlights", {.highlights = 0.5}, {HS{0.5, {}, 0}}},
        {"highlights and recovery", {.highlights = 0.9, .recovery = 0.6}, {HS{0.3, {}, 0}}},
        {"recovery for less", {.recovery = 0.75}, {HS{0.5, {}, 0}}},
        {"highlights against recovery", {.highlights = -0.5, .recovery = 0.75}, {}},
        {"negative highlights", {.highlights = -0.5}, {HS{1.5, {}, 0}}},
        {"shadows alone", {.shadows = 0.2, .recovery = 0}, {HS{{}, 0.2 * 1.5, 0}}},
        {"most shadows", {.shadows = 0.9}, {HS{{}, 1, 0}}},
        {"least shadows", {.shadows = -0.9}, {HS{{}, -1, 0}}},
        {"sharpness", {.sharpness = 0.5}, {CISharpenLuminance{0.25}}},
        {"negative sharpness", {.sharpness = -1}, {}},
        {"all, in their order",
            {.exposure = 1,
                .saturation = 2,
                .vibrance = 1,
                .tint = 1,
                .sharpness = 2,
                .highlights = 0.25,
                .shadows = 0.5},
            {CIExposureAdjust{1}, CIColorControls{2}, CIVibrance{1},
                CITemperatureAndTint{{6500, 1}, {6500, 0}}, HS{0.75, 0.75, 0}, CISharpenLuminance{1}}},
    };
    for (const auto& [what, edits, filters] : cases)
        EXPECT_TRUE(basicFilters(edits) == filters) << what;
}

TEST(DisabledBricks, takeTheirFieldsOutAndNoOthers)
{
    const PhotoEdits edits{.exposure = 1,
        .contrast = 1.1,
        .temperature = 5,
        .tint = 6,
        .straighten = 2,
        .highlights = 0.1,
        .recovery = 0.2,
        .levels = Levels()};
    const auto without = [&](std::vector<std::string> bricks) {
        PhotoEdits some = edits;
        some.disabledBricks = std::move(bricks);
        return withoutDisabledBricks(some);
    };
    EXPECT_EQ(without({}), edits);
    EXPECT_EQ(without({"no such brick"}), edits);

    PhotoEdits expected = edits;
    expected.temperature = expected.tint = expected.exposure = 0;
    expected.recovery.reset();
    EXPECT_EQ(without({"whiteBalance", "exposure"}), expected);

    std::vector<std::string> every;
    for (const auto& brick : casesOf<AdjustmentBrick>)
        every.emplace_back(brick.name);
    EXPECT_EQ(without(every), PhotoEdits{.straighten = 2});
}

TEST(DisabledBricks, areTakenOutOfLayersByTheLayersOwnList)
{
    BrushLayer layer;
    layer.edits = {.exposure = 1, .sharpness = 1, .disabledBricks = {{"sharpen"}}};
    const PhotoEdits rendered
        = withoutDisabledBricks({.exposure = 2, .brushes = {{layer}}, .disabledBricks = {{"exposure"}}});
    EXPECT_EQ(rendered.exposure, 0);
    EXPECT_EQ(rendered.brushes->front().edits, PhotoEdits{.exposure = 1});
}

} // namespace korvo
