#pragma once

#include "aperture/AdjustmentParameters.h"
#include "aperture/ApertureTranslator.h"
#include "edits/AdjustmentBrick.h"

namespace korvo {

/// How an adjustment came over.
enum class TranslationOutcome { translated, approximated, unsupported };

/// An operation of Aperture that applies to the whole photo.
struct AdjustmentOperation {
    using Apply = TranslationOutcome (*)(
        const AdjustmentParameters& parameters, const ApertureTranslator::Photo& photo, PhotoEdits& edits);

    std::string_view name; ///< Aperture's
    Apply apply; ///< adds the adjustment to what earlier ones left in the edits
    /// The controls of what it sets; none for those that a local layer cannot carry.
    std::optional<AdjustmentBrick> brick;
};

std::span<const AdjustmentOperation> adjustmentOperations();

/// Sets a field, unless the value is not finite: sums and products of numbers that are may leave their range.
void assignFinite(double& field, double value);

} // namespace korvo
