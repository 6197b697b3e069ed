#pragma once

#include "base/Record.h"
#include "edits/PhotoEdits.h"

#include <array>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

/// The basic adjustments as calls of Core Image's filters: each record is the filter of its name, its fields
/// the filter's input parameters of theirs. A parameter that is not set keeps the filter's own default.
namespace korvo {

struct CIExposureAdjust {
    double inputEV = 0; ///< stops
};
KORVO_RECORD(CIExposureAdjust, inputEV)

struct CIColorControls {
    double inputSaturation = 1;
};
KORVO_RECORD(CIColorControls, inputSaturation)

struct CIVibrance {
    double inputAmount = 0;
};
KORVO_RECORD(CIVibrance, inputAmount)

/// White points as (temperature in kelvin, tint).
struct CITemperatureAndTint {
    std::array<double, 2> inputNeutral{6500, 0};
    std::array<double, 2> inputTargetNeutral{6500, 0};
};
KORVO_RECORD(CITemperatureAndTint, inputNeutral, inputTargetNeutral)

struct CIHighlightShadowAdjust {
    std::optional<double> inputHighlightAmount; ///< 1 when not given
    std::optional<double> inputShadowAmount; ///< 0 when not given
    std::int64_t inputRadius = 0;
};
KORVO_RECORD(CIHighlightShadowAdjust, inputHighlightAmount, inputShadowAmount, inputRadius)

struct CISharpenLuminance {
    double inputSharpness = 0;
};
KORVO_RECORD(CISharpenLuminance, inputSharpness)

using BasicFilter = std::variant<CIExposureAdjust, CIColorControls, CIVibrance, CITemperatureAndTint,
    CIHighlightShadowAdjust, CISharpenLuminance>;

/// The filters that the edits ask for, in their fixed order: none for a step that changes nothing.
std::vector<BasicFilter> basicFilters(const PhotoEdits& edits);

} // namespace korvo
