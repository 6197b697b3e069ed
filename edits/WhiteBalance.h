#pragma once

#include "edits/BasicFilters.h"
#include "platform/ColorMatrix.h"

namespace korvo {

/// The adaptation of linear sRGB from the neutral white point to the target: a neutral above the target
/// warms, a positive tint of it goes magenta. Locus: Krystek 1985 in CIE 1960 UCS, 2000 to 15,000 K; a unit
/// of tint is 1/3000 across it (Adobe's DNG convention); adaptation: Bradford.
ColorMatrix whiteBalanceMatrix(const CITemperatureAndTint& filter);

} // namespace korvo
