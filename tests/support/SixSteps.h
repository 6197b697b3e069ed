#pragma once

#include "edits/PhotoEdits.h"

namespace korvo {

/// All adjustments that there are, as a photographer may set them; bench/compare/run has the same.
inline const PhotoEdits sixSteps{.exposure = 0.5,
    .saturation = 1.2,
    .vibrance = 0.3,
    .temperature = 10,
    .tint = 5,
    .sharpness = 0.4,
    .highlights = 0.4,
    .shadows = 0.2};

} // namespace korvo
