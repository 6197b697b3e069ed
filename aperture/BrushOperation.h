#pragma once

#include "aperture/AdjustmentParameters.h"
#include "edits/QuickBrush.h"

namespace korvo {

/// An operation that Aperture's quick brushes paint with.
struct BrushOperation {
    std::string_view name; ///< Aperture's
    std::optional<QuickBrush> brush; ///< none for halo reduction, which we have no brush for
    double usualAmount = 0; ///< when the parameters name none
    std::string_view ownKey = "inputIntensity"; ///< where the amount is looked for first
};

std::span<const BrushOperation> brushOperations();

/// What the brush does where it is painted; nothing when its amount has no effect. Amounts are taken into the
/// range of the brush's slider.
std::optional<PhotoEdits> brushEffect(
    const BrushOperation& operation, const AdjustmentParameters& parameters);

/// A local layer with that effect, through a mask that the caller adds.
BrushLayer brushLayer(const BrushOperation& operation, PhotoEdits effect);

/// Adds a brush's effect to the edits of the whole photo: factors multiply, amounts add up, of noise
/// reductions the stronger one counts.
void merge(PhotoEdits& edits, const PhotoEdits& effect);

} // namespace korvo
