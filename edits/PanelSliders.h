#pragma once

#include "edits/AdjustmentBrick.h"
#include "edits/EditField.h"

#include <span>
#include <string_view>
#include <vector>

namespace korvo {

/// A slider of the adjustments panel.
struct PanelSlider {
    AdjustmentBrick brick;
    std::string_view label;
    double lower;
    double upper;
    double neutral; ///< the value at which it changes nothing
    double step; ///< of an arrow key
    int decimals; ///< of its number
    std::string_view unit; ///< behind its number, or empty
    EditField field;

    double value(const PhotoEdits& edits) const { return field.get(edits); }
    /// Writes the value, kept within the range and rounded to the decimals that are shown.
    void setValue(PhotoEdits& edits, double value) const;
    /// Writes the neutral value: an optional field is not set any more.
    void reset(PhotoEdits& edits) const { field.set(edits, neutral); }
};

/// The sliders of the bricks that can be seen in the picture, brick by brick in the order of the panel.
std::span<const PanelSlider> panelSliders();

/// The same of one brick; none for a brick that the panel does not show.
std::span<const PanelSlider> panelSliders(AdjustmentBrick brick);

/// The bricks that have sliders, in the order of the panel.
std::vector<AdjustmentBrick> panelBricks();

} // namespace korvo
