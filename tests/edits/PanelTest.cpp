#include "edits/AdjustmentCopy.h"
#include "edits/BasicFilters.h"
#include "edits/DisabledBricks.h"
#include "edits/PanelSliders.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace korvo {

TEST(PanelSliders, eachShowsInTheRenderBelongsToItsBrickAndLeavesNothingBehind)
{
    for (const auto& slider : panelSliders()) {
        SCOPED_TRACE(slider.label);
        PhotoEdits edits;
        EXPECT_EQ(slider.value(edits), slider.neutral);
        slider.setValue(edits, slider.upper);
        EXPECT_EQ(slider.value(edits), slider.upper);
        EXPECT_FALSE(basicFilters(edits).empty()) << "a slider that changes nothing";
        EXPECT_FALSE(isNeutral(slider.brick, edits)) << "its brick does not own it";
        slider.setValue(edits, slider.neutral);
        EXPECT_TRUE(isIdentity(edits)) << "moved there and back";
        slider.setValue(edits, slider.lower - 1000);
        EXPECT_EQ(slider.value(edits), slider.lower);
        slider.reset(edits);
        EXPECT_TRUE(isIdentity(edits));
    }
}

TEST(PanelSliders, valuesAreTheNumbersShown)
{
    PhotoEdits edits;
    const auto& exposure = panelSliders(AdjustmentBrick::exposure).front();
    exposure.setValue(edits, 0.123456);
    EXPECT_EQ(edits.exposure, 0.12);
    exposure.setValue(edits, -0.001);
    EXPECT_FALSE(std::signbit(edits.exposure)) << "shown as -0";
}

TEST(PanelSliders, standByBrickInTheOrderOfThePanel)
{
    std::size_t count = 0;
    for (const auto brick : panelBricks())
        count += panelSliders(brick).size();
    EXPECT_EQ(count, panelSliders().size());
    EXPECT_TRUE(std::ranges::is_sorted(panelBricks()));
    EXPECT_TRUE(panelSliders(AdjustmentBrick::levels).empty());
}

TEST(DisabledBricks, aBrickIsSwitchedAndResetByItself)
{
    using enum AdjustmentBrick;
    PhotoEdits edits{.exposure = 1, .saturation = 1.5, .recovery = 0.5};
    edits.disabledBricks = {"somethingElse"};
    switchOff(exposure, edits);
    switchOff(exposure, edits);
    EXPECT_EQ(edits.disabledBricks, (std::vector<std::string>{"somethingElse", "exposure"}));
    EXPECT_FALSE(isOn(exposure, edits));
    EXPECT_EQ(edits.exposure, 1) << "its values are kept";
    switchOn(exposure, edits);
    EXPECT_EQ(edits.disabledBricks, (std::vector<std::string>{"somethingElse"}));

    edits.disabledBricks = {"exposure"};
    reset(exposure, edits);
    EXPECT_EQ(edits, (PhotoEdits{.saturation = 1.5})) << "values and switch of this brick alone";
    EXPECT_TRUE(isNeutral(exposure, edits));
    EXPECT_FALSE(isNeutral(enhance, edits));
}

TEST(AdjustmentCopy, leavesWhatBelongsToThePictureItself)
{
    PhotoEdits source{.exposure = 1, .rotation = 1, .crop = CropRect{0, 0, 0.5, 0.5}, .highlights = 0.3};
    source.disabledBricks = {"exposure"};
    PhotoEdits target{.saturation = 0, .rotation = 3, .straighten = 2};
    target.brushes.emplace();
    PhotoEdits expected{.exposure = 1, .rotation = 3, .straighten = 2, .highlights = 0.3};
    expected.brushes.emplace();
    expected.disabledBricks = {"exposure"};
    EXPECT_EQ(withAdjustmentsOf(source, target), expected);

    PhotoEdits before{.rotation = 1, .crop = source.crop};
    EXPECT_EQ(withoutAdjustments(source), before);
}

} // namespace korvo
