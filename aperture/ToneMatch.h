#pragma once

#include "edits/ToneCurves.h"
#include "platform/Image.h"

#include <optional>

namespace korvo {

/// The monotone tone curve that brings `ours` closest to `theirs`, two renders of one photo in the same size:
/// of all curves that never fall, the one with the least mean square difference over the three channels, at
/// 17 levels. Nothing when it does not lower the mean difference, or when the sizes differ.
std::optional<ToneCurves> fitToneCurve(const Bitmap& ours, const Bitmap& theirs);

} // namespace korvo
