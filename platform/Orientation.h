#pragma once

#include "platform/Image.h"

namespace korvo {

/// How a stored picture has to be turned to be seen upright, with the numbers of the EXIF tag (Exif 2.32,
/// 4.6.4 A). Others mean `upright`.
enum class Orientation {
    upright = 1,
    mirrored = 2,
    upsideDown = 3,
    flipped = 4,
    transposed = 5,
    quarterRight = 6, ///< to be turned by 90° clockwise
    transversed = 7,
    quarterLeft = 8
};

/// The orientation of a tag's number.
Orientation orientationOf(int number);

/// Whether width and height change places.
constexpr bool swapsSides(Orientation orientation)
{
    return orientation >= Orientation::transposed;
}

/// The picture turned upright; the very pixels, none computed.
Bitmap turned(Bitmap image, Orientation orientation);
LinearImage turned(LinearImage image, Orientation orientation);

} // namespace korvo
