#pragma once

#include "base/Record.h"
#include "edits/PhotoEdits.h"
#include "platform/Image.h"

#include <optional>

namespace korvo {

/// Proposes a baseline for the basic adjustments from a few statistics of a small rendition of the photo.
struct AutoEnhance {
    /// What the statistics propose; each bears the name of the field of PhotoEdits that it is for.
    struct Values {
        double exposure = 0;
        double contrast = 1;
        double vibrance = 0;
        double highlights = 0;
        double shadows = 0;
    };

    /// Which of the values are applied; combined with |.
    enum class Fields : int {
        exposure = 1,
        contrast = 2,
        vibrance = 4,
        highlights = 8,
        shadows = 16,
        panel = exposure | contrast | vibrance, ///< what the panel's button sets
        all = panel | highlights | shadows,
    };

    /// Luminance is 0 to 1, of encoded values; fractions are of the pixels.
    struct Statistics {
        double meanLuminance = 0;
        double lowLuminance = 0; ///< 5 % are darker
        double highLuminance = 0; ///< 5 % are brighter
        double meanSaturation = 0;
        double shadowFraction = 0; ///< darker than 0.04
        double highlightFraction = 0; ///< brighter than 0.96
    };

    /// The statistics of the file's whole picture, upright and shrunk. Nothing for one without pixels.
    static std::optional<Statistics> statistics(const Bitmap& rendition);
    static Values values(const Statistics& statistics);
    /// Replaces the fields named. Highlights and shadows that need no change are not set rather than 0, so
    /// that a photo that needs nothing stays without edits.
    static void apply(const Values& values, Fields fields, PhotoEdits& edits);
};

KORVO_RECORD(AutoEnhance::Values, exposure, contrast, vibrance, highlights, shadows)
KORVO_RECORD(AutoEnhance::Statistics, meanLuminance, lowLuminance, highLuminance, meanSaturation,
    shadowFraction, highlightFraction)

constexpr AutoEnhance::Fields operator|(AutoEnhance::Fields a, AutoEnhance::Fields b)
{
    return static_cast<AutoEnhance::Fields>(static_cast<int>(a) | static_cast<int>(b));
}

constexpr bool contains(AutoEnhance::Fields fields, AutoEnhance::Fields field)
{
    return (static_cast<int>(fields) & static_cast<int>(field)) == static_cast<int>(field);
}

} // namespace korvo
