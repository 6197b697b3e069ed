#pragma once

#include "base/Enum.h"

namespace korvo {

/// What the colour picker of the adjustments panel sets from the colour under the pointer.
enum class ColorPick { neutral, skinTone, levelsBlack, levelsWhite, curvesBlack, curvesGray, curvesWhite };
KORVO_ENUM(ColorPick, neutral, skinTone, levelsBlack, levelsWhite, curvesBlack, curvesGray, curvesWhite)

} // namespace korvo
