#include "edits/BasicFilters.h"

#include <algorithm>

namespace korvo {

namespace {

std::optional<BasicFilter> exposure(const PhotoEdits& edits)
{
    if (edits.exposure == 0)
        return {};
    return CIExposureAdjust{edits.exposure};
}

std::optional<BasicFilter> saturation(const PhotoEdits& edits)
{
    if (edits.saturation == 1)
        return {};
    return CIColorControls{edits.saturation};
}

std::optional<BasicFilter> vibrance(const PhotoEdits& edits)
{
    if (edits.vibrance == 0)
        return {};
    return CIVibrance{edits.vibrance};
}

std::optional<BasicFilter> whiteBalance(const PhotoEdits& edits)
{
    if (edits.temperature == 0 && edits.tint == 0)
        return {};
    return CITemperatureAndTint{.inputNeutral = {edits.temperature * 25 + 6500, edits.tint}};
}

// Recovery counts for less than highlights, shadows for more than the slider says: 1.5 works both ways on
// purpose.
std::optional<BasicFilter> highlightsAndShadows(const PhotoEdits& edits)
{
    const double highlights = edits.highlights.value_or(0) + edits.recovery.value_or(0) / 1.5;
    const double shadows = edits.shadows.value_or(0);
    if (highlights == 0 && shadows == 0)
        return {};
    CIHighlightShadowAdjust filter;
    if (highlights != 0)
        filter.inputHighlightAmount = std::max(1 - std::min(highlights, 1.0), 0.3);
    if (shadows != 0)
        filter.inputShadowAmount = std::clamp(shadows * 1.5, -1.0, 1.0);
    return filter;
}

std::optional<BasicFilter> sharpening(const PhotoEdits& edits)
{
    if (!(edits.sharpness > 0))
        return {};
    return CISharpenLuminance{edits.sharpness * 0.5};
}

} // namespace

std::vector<BasicFilter> basicFilters(const PhotoEdits& edits)
{
    std::vector<BasicFilter> filters;
    for (const auto step : {exposure, saturation, vibrance, whiteBalance, highlightsAndShadows, sharpening})
        if (const auto filter = step(edits))
            filters.push_back(*filter);
    return filters;
}

} // namespace korvo
