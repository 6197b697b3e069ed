#pragma once

#include "base/Dates.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// The instant of an EXIF date "yyyy:MM:dd HH:mm:ss" and its offset from UTC, "+HH:mm" or "-HH:mm". An offset
/// that is missing, shorter or malformed counts as none: the date is then one in the user's time zone.
/// Nothing when the date is malformed. Fractions of a second are passed over. At the change from daylight
/// saving time, an hour that happens twice is taken as its second one, and a time that is left out counts on
/// from the last moment before the change.
std::optional<UnixTime> parseCaptureDate(
    std::string_view dateTimeOriginal, std::string_view offsetTimeOriginal = {});

/// The date "yyyy:MM:dd HH:mm:ss" that a clock shows `seconds` after it showed the beginning of 1970; empty
/// outside the years 1 to 9999.
std::string exifDate(std::int64_t seconds);

} // namespace korvo
