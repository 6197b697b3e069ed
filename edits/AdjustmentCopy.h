#pragma once

#include "edits/PhotoEdits.h"

namespace korvo {

/// `target` with the adjustments of `source`. What belongs to one picture alone stays that of the target: its
/// turns, crop and straightening, retouches and red eyes, painted layers, and the curve matched to its
/// render.
PhotoEdits withAdjustmentsOf(const PhotoEdits& source, const PhotoEdits& target);

/// The edits as they would be before any adjustment: turned and cropped the same.
PhotoEdits withoutAdjustments(const PhotoEdits& edits);

} // namespace korvo
