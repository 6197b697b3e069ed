#pragma once

#include "base/Enum.h"
#include "edits/EditField.h"

#include <string_view>

namespace korvo {

/// The local layers made by one click, in the order of the menu.
enum class QuickBrush {
    skinSmoothing,
    dodge,
    burn,
    polarize,
    intensifyContrast,
    saturate,
    desaturate,
    sharpen,
    blur,
    noiseReduction,
    definition,
    vibrancy,
    contrast,
};
KORVO_ENUM(QuickBrush, skinSmoothing, dodge, burn, polarize, intensifyContrast, saturate, desaturate, sharpen,
    blur, noiseReduction, definition, vibrancy, contrast)

/// The one slider of a quick brush. It runs over lower...upper; at its neutral value, which is the lower end,
/// the brush has no effect.
struct SliderSpec {
    enum class Direction { rising, falling };

    std::string_view label;
    double lower;
    double upper;
    EditField field;
    double origin = 0; ///< the field's value at slider 0
    Direction direction = Direction::rising; ///< of the field's value as the slider rises

    double neutral() const { return lower; }
    /// The slider's value for a layer's edits.
    double value(const PhotoEdits& edits) const;
    /// Writes the adjustment that a slider value stands for.
    void setValue(PhotoEdits& edits, double sliderValue) const;
};

/// The name that the user reads: "Dodge (Lighten)".
std::string_view title(QuickBrush brush);

const SliderSpec& slider(QuickBrush brush);

} // namespace korvo
