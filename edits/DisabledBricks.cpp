#include "edits/DisabledBricks.h"

#include <algorithm>
#include <utility>

namespace korvo {

namespace {

template <auto... Fields>
void makeNeutral(PhotoEdits& edits)
{
    const PhotoEdits neutral;
    ((edits.*Fields = neutral.*Fields), ...);
}

struct BrickFields {
    AdjustmentBrick brick;
    void (*makeNeutral)(PhotoEdits& edits);
};

using B = AdjustmentBrick;
using E = PhotoEdits;

constexpr BrickFields bricks[]{
    {B::chromaticAberration, makeNeutral<&E::chromaticAberration>},
    {B::devignette, makeNeutral<&E::devignette>},
    {B::noiseReduction, makeNeutral<&E::noiseReduction>},
    {B::whiteBalance, makeNeutral<&E::temperature, &E::tint>},
    {B::exposure, makeNeutral<&E::exposure, &E::recovery, &E::blackPoint, &E::brightness>},
    {B::enhance, makeNeutral<&E::contrast, &E::definition, &E::saturation, &E::vibrance>},
    {B::highlightsShadows, makeNeutral<&E::highlights, &E::shadows, &E::midContrast>},
    {B::levels, makeNeutral<&E::levels>},
    {B::color, makeNeutral<&E::colorBands>},
    {B::blackAndWhite, makeNeutral<&E::bwMix>},
    {B::colorMonochrome, makeNeutral<&E::monochrome>},
    {B::sepia, makeNeutral<&E::sepia>},
    {B::sharpen, makeNeutral<&E::sharpness>},
    {B::edgeSharpen, makeNeutral<&E::edgeSharpen>},
    {B::vignette, makeNeutral<&E::vignette>},
    {B::curves, makeNeutral<&E::curves, &E::moreCurves>},
    {B::polarize, makeNeutral<&E::polarize>},
    {B::intensifyContrast, makeNeutral<&E::intensifyContrast>},
};
static_assert(std::size(bricks) == casesOf<AdjustmentBrick>.size());

void makeNeutral(AdjustmentBrick brick, PhotoEdits& edits)
{
    std::ranges::find(bricks, brick, &BrickFields::brick)->makeNeutral(edits);
}

} // namespace

PhotoEdits withoutDisabledBricks(PhotoEdits edits)
{
    const auto disabled = std::exchange(edits.disabledBricks, {}).value_or(std::vector<std::string>());
    for (const auto& [brick, clear] : bricks)
        if (std::find(disabled.begin(), disabled.end(), nameOf(brick)) != disabled.end())
            clear(edits);
    if (edits.brushes)
        for (BrushLayer& layer : *edits.brushes)
            layer.edits = withoutDisabledBricks(std::move(layer.edits));
    return edits;
}

bool isOn(AdjustmentBrick brick, const PhotoEdits& edits)
{
    return !edits.disabledBricks || std::ranges::count(*edits.disabledBricks, nameOf(brick)) == 0;
}

void switchOn(AdjustmentBrick brick, PhotoEdits& edits)
{
    if (!edits.disabledBricks)
        return;
    std::erase(*edits.disabledBricks, nameOf(brick));
    if (edits.disabledBricks->empty()) // an empty list would count as an edit
        edits.disabledBricks.reset();
}

void switchOff(AdjustmentBrick brick, PhotoEdits& edits)
{
    if (!isOn(brick, edits))
        return;
    if (!edits.disabledBricks)
        edits.disabledBricks.emplace();
    edits.disabledBricks->emplace_back(nameOf(brick));
}

bool isNeutral(AdjustmentBrick brick, const PhotoEdits& edits)
{
    auto neutral = edits;
    makeNeutral(brick, neutral);
    return neutral == edits;
}

void reset(AdjustmentBrick brick, PhotoEdits& edits)
{
    makeNeutral(brick, edits);
    switchOn(brick, edits);
}

} // namespace korvo
