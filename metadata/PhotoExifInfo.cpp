#include "metadata/PhotoExifInfo.h"

#include "base/Text.h"
#include "catalog/CameraName.h"
#include "metadata/CaptureDate.h"
#include "metadata/ForeignText.h"

#include <algorithm>
#include <cmath>
#include <fmt/compile.h>
#include <limits>

namespace korvo {

namespace {

std::optional<std::string> nonEmptyText(std::string_view text)
{
    return text.empty() ? std::nullopt : std::optional(fromUnknownEncoding(text));
}

void describeExposure(PhotoExifInfo& info, const ExifTags& tags)
{
    if (tags.exposureTime && *tags.exposureTime > 0) {
        info.shutterSeconds = tags.exposureTime;
        info.exposure = exposureText(*tags.exposureTime);
    }
    if (tags.fNumber) {
        info.apertureValue = tags.fNumber;
        info.aperture = apertureText(*tags.fNumber);
    }
    if (tags.focalLength) {
        info.focalValue = tags.focalLength;
        info.focalLength = focalLengthText(*tags.focalLength);
    }
    if (tags.iso)
        info.isoValue = static_cast<int>(std::min<std::uint32_t>(*tags.iso, std::numeric_limits<int>::max()));
}

} // namespace

std::string exposureText(double seconds)
{
    return seconds >= 1 ? fmt::format(FMT_COMPILE("{:.1f} s"), seconds)
                        : fmt::format(FMT_COMPILE("1/{:.0f} s"), std::round(1 / seconds));
}

std::string apertureText(double number)
{
    return fmt::format(FMT_COMPILE("ƒ/{:.1f}"), number);
}

std::string focalLengthText(double millimetres)
{
    return fmt::format(FMT_COMPILE("{:.0f} mm"), millimetres);
}

PhotoExifInfo exifInfo(const ExifTags& tags, PixelSize size)
{
    PhotoExifInfo info;
    if (const auto camera
        = cameraName(fromUnknownEncoding(trimmed(tags.make)), fromUnknownEncoding(trimmed(tags.model)));
        !camera.empty())
        info.camera = camera;
    info.lens = nonEmptyText(trimmed(tags.lens));
    describeExposure(info, tags);
    info.captureTimestamp = parseCaptureDate(tags.dateTimeOriginal, tags.offsetTimeOriginal);
    if (info.captureTimestamp)
        info.captureDate = localDateTime(*info.captureTimestamp);
    if (!size.empty())
        info.pixelSize = fmt::format(FMT_COMPILE("{} × {}"), size.width, size.height);
    info.coordinate = tags.coordinate;
    return info;
}

} // namespace korvo
