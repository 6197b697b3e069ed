#pragma once

#include "base/Record.h"

#include <cmath>

namespace korvo {

/// A position on the Earth in degrees: latitude from -90 (south) to 90, longitude from -180 (west) to 180.
struct Coordinate {
    double latitude = 0, longitude = 0;
};
KORVO_RECORD(Coordinate, latitude, longitude)

/// The parts of a file that hold where and when it was taken, or are to.
struct FileParts {
    bool exif = true, xmp = false, film = false;
};

/// Whether two positions are one as far as the ways to write them down tell: ten metres.
inline bool isSamePlace(const Coordinate& one, const Coordinate& other)
{
    constexpr double degrees = 1e-4;
    return std::abs(one.latitude - other.latitude) < degrees
        && std::abs(one.longitude - other.longitude) < degrees;
}

} // namespace korvo
