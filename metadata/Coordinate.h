#pragma once

#include "base/Record.h"

namespace korvo {

/// A position on the Earth in degrees: latitude from -90 (south) to 90, longitude from -180 (west) to 180.
struct Coordinate {
    double latitude = 0, longitude = 0;
};
KORVO_RECORD(Coordinate, latitude, longitude)

} // namespace korvo
