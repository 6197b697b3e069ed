#pragma once

#include "base/Record.h"

#include <optional>
#include <vector>

namespace korvo {

/// Input and output level, 0 to 1.
struct CurvePoint {
    double x = 0;
    double y = 0;
};
KORVO_RECORD(CurvePoint, x, y)

struct ToneCurves {
    std::vector<CurvePoint> rgb;
    std::vector<CurvePoint> red;
    std::vector<CurvePoint> green;
    std::vector<CurvePoint> blue;
    std::optional<double> gamma;
};
KORVO_RECORD(ToneCurves, rgb, red, green, blue, gamma)

/// Maps each input level ("Src") to an output level ("Dst").
struct LevelsChannel {
    double blackSrc = 0;
    double blackDst = 0;
    double shadowSrc = 0;
    double shadowDst = 0;
    double midSrc = 0;
    double midDst = 0;
    double highlightSrc = 0;
    double highlightDst = 0;
    double whiteSrc = 0;
    double whiteDst = 0;
};
KORVO_RECORD(LevelsChannel, blackSrc, blackDst, shadowSrc, shadowDst, midSrc, midDst, highlightSrc,
    highlightDst, whiteSrc, whiteDst)

struct Levels {
    LevelsChannel rgb;
    std::optional<LevelsChannel> red;
    std::optional<LevelsChannel> green;
    std::optional<LevelsChannel> blue;
    std::optional<bool> luminance;
};
KORVO_RECORD(Levels, rgb, red, green, blue, luminance)

} // namespace korvo
