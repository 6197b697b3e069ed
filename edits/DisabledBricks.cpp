#include "edits/DisabledBricks.h"

#include "edits/AdjustmentBrick.h"

#include <algorithm>
#include <utility>

namespace korvo {

namespace {

template <auto... Fields>
void reset(PhotoEdits& edits)
{
    const PhotoEdits neutral;
    ((edits.*Fields = neutral.*Fields), ...);
}

struct BrickFields {
    AdjustmentBrick brick;
    void (*reset)(PhotoEdits& edits);
};

using B = AdjustmentBrick;
using E = PhotoEdits;

constexpr BrickFields bricks[]{
    {B::chromaticAberration, reset<&E::chromaticAberration>},
    {B::devignette, reset<&E::devignette>},
    {B::noiseReduction, reset<&E::noiseReduction>},
    {B::whiteBalance, reset<&E::temperature, &E::tint>},
    {B::exposure, reset<&E::exposure, &E::recovery, &E::blackPoint, &E::brightness>},
    {B::enhance, reset<&E::contrast, &E::definition, &E::saturation, &E::vibrance>},
    {B::highlightsShadows, reset<&E::highlights, &E::shadows, &E::midContrast>},
    {B::levels, reset<&E::levels>},
    {B::color, reset<&E::colorBands>},
    {B::blackAndWhite, reset<&E::bwMix>},
    {B::colorMonochrome, reset<&E::monochrome>},
    {B::sepia, reset<&E::sepia>},
    {B::sharpen, reset<&E::sharpness>},
    {B::edgeSharpen, reset<&E::edgeSharpen>},
    {B::vignette, reset<&E::vignette>},
    {B::curves, reset<&E::curves, &E::moreCurves>},
    {B::polarize, reset<&E::polarize>},
    {B::intensifyContrast, reset<&E::intensifyContrast>},
};
static_assert(std::size(bricks) == casesOf<AdjustmentBrick>.size());

} // namespace

PhotoEdits withoutDisabledBricks(PhotoEdits edits)
{
    const auto disabled = std::exchange(edits.disabledBricks, {}).value_or(std::vector<std::string>());
    for (const auto& [brick, reset] : bricks)
        if (std::find(disabled.begin(), disabled.end(), nameOf(brick)) != disabled.end())
            reset(edits);
    if (edits.brushes)
        for (BrushLayer& layer : *edits.brushes)
            layer.edits = withoutDisabledBricks(std::move(layer.edits));
    return edits;
}

} // namespace korvo
