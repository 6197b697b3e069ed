#pragma once

#include "edits/PhotoEdits.h"
#include "platform/Image.h"

#include <utility>

namespace korvo {

/// What the edits do to a picture's place and shape: quarter turns, flips, straightening, crop, in this
/// order.
struct Geometry {
    int quarterTurns = 0; ///< clockwise, 0 to 3
    bool flipsHorizontally = false;
    bool flipsVertically = false;
    double straighten = 0; ///< degrees clockwise, -45 to 45
    CropRect crop{0, 0, 1, 1}; ///< within 0 to 1, not empty

    bool isIdentity() const;
    /// The least part that the crop leaves of a side.
    double leastKept() const;
};

Geometry geometryOf(const PhotoEdits& edits);

/// Turns the finished picture, what its crop keeps included, clockwise by so many quarters.
void turn(PhotoEdits& edits, int quarters);

/// The size that a picture of these pixels has with the geometry applied.
std::pair<int, int> sizeWith(const Geometry& geometry, int width, int height);

/// The picture with the geometry applied. Quarter turns, flips and crops take the very pixels; a picture that
/// is straightened keeps its size, is enlarged until no border shows, and is computed by a bicubic filter.
Bitmap withGeometry(Bitmap image, const Geometry& geometry);

} // namespace korvo
