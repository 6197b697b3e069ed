#pragma once

#include "base/Record.h"
#include "platform/Image.h"

#include <array>

namespace korvo {

/// The tones of a picture as heights from 0 to 1, shadows first: each channel's largest has height 1.
struct HistogramData {
    static constexpr std::size_t bins = 64;
    using Heights = std::array<double, bins>;

    Heights red{};
    Heights green{};
    Heights blue{};
    Heights luminance{};
};
KORVO_RECORD(HistogramData, red, green, blue, luminance)

/// All heights 0.
const HistogramData& emptyHistogram();

/// The histogram of a picture as it is shown, from at most 200 by 200 of its pixels. Empty for one without
/// pixels.
HistogramData histogram(const Bitmap& image);

} // namespace korvo
