#pragma once

#include "aperture/AdjustmentOperation.h"

namespace korvo {

/// Aperture's crop is in pixels of the master from its lower left corner, before the version is turned; ours
/// is in fractions of the turned image from its upper left corner. One without an area is ignored, one that
/// lies outside of the image or whose master's size is unknown is unsupported.
TranslationOutcome translateCrop(
    const AdjustmentParameters& parameters, const ApertureTranslator::Photo& photo, PhotoEdits& edits);

/// Adds one spot for each stroke, at most 10,000 in all. Strokes without a place or a radius are left out:
/// the adjustment is then approximated, or unsupported when no stroke is left.
TranslationOutcome translateRetouch(
    const AdjustmentParameters& parameters, const ApertureTranslator::Photo& photo, PhotoEdits& edits);

} // namespace korvo
