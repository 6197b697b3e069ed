#pragma once

#include "base/Dates.h"
#include "base/Record.h"
#include "metadata/ExifTags.h"

#include <optional>
#include <string>

namespace korvo {

/// The camera facts of one file, as numbers and as they are shown. What the file does not say is not set.
struct PhotoExifInfo {
    std::optional<std::string> camera; ///< "Canon EOS R5": make and model, the make not said twice
    std::optional<std::string> lens;
    std::optional<std::string> exposure; ///< "1/250 s", "2.0 s"
    std::optional<std::string> aperture; ///< "ƒ/2.8"
    std::optional<std::string> focalLength; ///< "50 mm"
    std::optional<std::string> captureDate; ///< "2024-05-01 12:00:00" in the user's time zone
    std::optional<UnixTime> captureTimestamp;
    std::optional<std::string> pixelSize; ///< "6000 × 4000", as stored, before any rotation
    std::optional<Coordinate> coordinate;
    std::optional<int> isoValue;
    std::optional<double> focalValue; ///< millimetres
    std::optional<double> apertureValue; ///< f-number
    std::optional<double> shutterSeconds; ///< above 0
};
KORVO_RECORD(PhotoExifInfo, camera, lens, exposure, aperture, focalLength, captureDate, captureTimestamp,
    pixelSize, coordinate, isoValue, focalValue, apertureValue, shutterSeconds)

/// "1/250 s", of a second and more "2.0 s"; of more than 0 seconds.
std::string exposureText(double seconds);
/// "ƒ/2.8"
std::string apertureText(double number);
/// "50 mm"
std::string focalLengthText(double millimetres);

/// The facts of a file from its tags and the size of its picture.
PhotoExifInfo exifInfo(const ExifTags& tags, PixelSize size);

} // namespace korvo
