#include "metadata/InfoTexts.h"

#include "base/Text.h"
#include "metadata/ExifReader.h"

#include <fmt/format.h>

#include <cmath>
#include <initializer_list>

namespace korvo {

namespace {

constexpr std::string_view separator = " · ";

std::string joined(std::initializer_list<std::string> parts)
{
    std::string line;
    for (const auto& part : parts)
        if (!part.empty())
            line += (line.empty() ? "" : std::string(separator)) + part;
    return line;
}

std::string degrees(double value, char positive, char negative)
{
    return fmt::format("{:.5f}° {}", std::abs(value), value < 0 ? negative : positive);
}

} // namespace

std::string cameraLine(const PhotoItem& item)
{
    return joined({item.camera.string(), item.lens.string()});
}

std::string exposureLine(const PhotoItem& item)
{
    // A camera that does not know writes 0.
    return joined({item.shutter.value_or(0) > 0 ? exposureText(*item.shutter) : "",
        item.aperture.value_or(0) > 0 ? apertureText(*item.aperture) : "",
        item.focalLength.value_or(0) > 0 ? focalLengthText(*item.focalLength) : "",
        item.iso.value_or(0) > 0 ? "ISO " + std::to_string(*item.iso) : ""});
}

std::string positionText(const PhotoItem& item)
{
    if (!item.latitude || !item.longitude)
        return {};
    return degrees(*item.latitude, 'N', 'S') + ", " + degrees(*item.longitude, 'E', 'W');
}

std::string dateText(const PhotoItem& item)
{
    if (item.captureDate)
        return "Taken " + localDateTime(*item.captureDate);
    return item.fileDate ? "File of " + localDateTime(*item.fileDate) : std::string();
}

std::string unwrittenText(std::size_t waiting, std::size_t photos)
{
    if (waiting == 0)
        return {};
    if (photos == 1)
        return "Not yet written into the file";
    return fmt::format(
        "{} of {} not yet written into their files", grouped(waiting), counted(photos, "photo"));
}

FileFacts fileFacts(const std::filesystem::path& file)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory)
        return {.isMissing = true};
    if (error)
        return {.fault = "The file cannot be looked at: " + error.message()};
    const auto info = readExif(file);
    return {.size = size, .pixelSize = info ? info->pixelSize : std::nullopt};
}

std::string fileLine(const FileFacts& facts)
{
    if (!facts.fault.empty())
        return facts.fault;
    return joined({facts.pixelSize.value_or(""), facts.size ? sizeText(*facts.size) : ""});
}

} // namespace korvo
