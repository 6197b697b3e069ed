#include "edits/PanelSliders.h"

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

/// A field that is not set again at 0, so that a slider moved there and back leaves no edit behind.
template <std::optional<double> PhotoEdits::*Member>
constexpr EditField unsetAtZero{
    optionalField<Member>.get,
    [](PhotoEdits& edits, double value) { edits.*Member = value != 0 ? std::optional(value) : std::nullopt; },
};

using B = AdjustmentBrick;
using E = PhotoEdits;

// The ranges end where the operators stop to follow, or where pictures stop to be pictures.
constexpr PanelSlider sliders[]{
    {B::whiteBalance, "Temperature", -100, 100, 0, 1, 0, "", plainField<&E::temperature>},
    {B::whiteBalance, "Tint", -100, 100, 0, 1, 0, "", plainField<&E::tint>},
    {B::exposure, "Exposure", -4, 4, 0, 0.05, 2, "EV", plainField<&E::exposure>},
    {B::exposure, "Recovery", 0, 1, 0, 0.01, 2, "", unsetAtZero<&E::recovery>},
    {B::enhance, "Saturation", 0, 2, 1, 0.01, 2, "", plainField<&E::saturation>},
    {B::enhance, "Vibrance", -1, 1, 0, 0.01, 2, "", plainField<&E::vibrance>},
    {B::highlightsShadows, "Highlights", -1, 1, 0, 0.01, 2, "", unsetAtZero<&E::highlights>},
    {B::highlightsShadows, "Shadows", -1, 1, 0, 0.01, 2, "", unsetAtZero<&E::shadows>},
    {B::sharpen, "Intensity", 0, 2, 0, 0.01, 2, "", plainField<&E::sharpness>},
};

} // namespace

void PanelSlider::setValue(PhotoEdits& edits, double value) const
{
    const double steps = std::pow(10.0, decimals);
    field.set(edits, std::round(std::clamp(value, lower, upper) * steps) / steps + 0.0); // no minus zero
}

std::span<const PanelSlider> panelSliders()
{
    return sliders;
}

std::span<const PanelSlider> panelSliders(AdjustmentBrick brick)
{
    const auto [first, last] = std::equal_range(std::begin(sliders), std::end(sliders),
        PanelSlider{.brick = brick}, [](const auto& a, const auto& b) { return a.brick < b.brick; });
    return {first, last};
}

std::vector<AdjustmentBrick> panelBricks()
{
    std::vector<AdjustmentBrick> bricks;
    for (const auto& slider : sliders)
        if (bricks.empty() || bricks.back() != slider.brick)
            bricks.push_back(slider.brick);
    return bricks;
}

} // namespace korvo
