#pragma once

#include "edits/BasicFilters.h"

#include <array>

namespace korvo {

inline constexpr int sharpeningReach = 3; ///< how far from a pixel its sharpening looks, in pixels

/// What the fused pass does to each pixel: the filters' parameters, worked out in double once for a render.
struct BasicPlan {
    using Matrix = std::array<float, 9>; ///< rows, applied to (R, G, B) columns

    bool hasMatrix = false;
    bool hasVibrance = false;
    bool hasTone = false;
    bool hasSharpening = false;

    Matrix before{}; ///< exposure and saturation; without vibrance also the white balance
    float vibrance = 0;
    Matrix after{}; ///< the white balance, with vibrance
    float shadowStops = 0; ///< the gain of black
    float highlightStops = 0; ///< the gain of white
    float sharpness = 0;
    /// Weights of a symmetric Gaussian, from its centre outwards, sum 1.
    std::array<float, sharpeningReach + 1> blur{};

    /// Whether there is nothing to do: the image stays itself.
    bool isIdentity() const { return !hasMatrix && !hasVibrance && !hasTone && !hasSharpening; }
};

/// `scale` is the render's pixels for one of the photo's, 1 for a full-size render: it sizes the sharpening.
BasicPlan basicPlan(const std::vector<BasicFilter>& filters, double scale = 1);

} // namespace korvo
