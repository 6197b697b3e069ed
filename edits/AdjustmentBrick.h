#pragma once

#include "base/Enum.h"

#include <string_view>

namespace korvo {

/// The groups of the adjustments panel, in its order.
enum class AdjustmentBrick {
    chromaticAberration,
    devignette,
    noiseReduction,
    whiteBalance,
    exposure,
    enhance,
    highlightsShadows,
    levels,
    color,
    blackAndWhite,
    colorMonochrome,
    sepia,
    sharpen,
    edgeSharpen,
    vignette,
    curves,
    polarize,
    intensifyContrast,
};
KORVO_ENUM(AdjustmentBrick, chromaticAberration, devignette, noiseReduction, whiteBalance, exposure, enhance,
    highlightsShadows, levels, color, blackAndWhite, colorMonochrome, sepia, sharpen, edgeSharpen, vignette,
    curves, polarize, intensifyContrast)

/// The name that the user reads: "Highlights & Shadows".
std::string_view title(AdjustmentBrick brick);

} // namespace korvo
