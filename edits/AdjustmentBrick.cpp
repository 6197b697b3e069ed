#include "edits/AdjustmentBrick.h"

#include <algorithm>
#include <array>

namespace korvo {

std::string_view title(AdjustmentBrick brick)
{
    using enum AdjustmentBrick;
    static constexpr std::array titles{
        enumCase(chromaticAberration, "Chromatic Aberration"),
        enumCase(devignette, "Devignette"),
        enumCase(noiseReduction, "Noise Reduction"),
        enumCase(whiteBalance, "White Balance"),
        enumCase(exposure, "Exposure"),
        enumCase(enhance, "Enhance"),
        enumCase(highlightsShadows, "Highlights & Shadows"),
        enumCase(levels, "Levels"),
        enumCase(color, "Color"),
        enumCase(blackAndWhite, "Black & White"),
        enumCase(colorMonochrome, "Color Monochrome"),
        enumCase(sepia, "Sepia Tone"),
        enumCase(sharpen, "Sharpen"),
        enumCase(edgeSharpen, "Edge Sharpen"),
        enumCase(vignette, "Vignette"),
        enumCase(curves, "Curves"),
        enumCase(polarize, "Polarize"),
        enumCase(intensifyContrast, "Intensify Contrast"),
    };
    static_assert(titles.size() == casesOf<AdjustmentBrick>.size());
    return std::find_if(titles.begin(), titles.end(), [=](const auto& entry) {
        return entry.value == brick;
    })->name;
}

} // namespace korvo
