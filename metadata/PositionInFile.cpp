#include "metadata/PositionInFile.h"

#include "metadata/DescriptiveReader.h"
#include "metadata/ExifReader.h"
#include "metadata/exiftool/ExifToolError.h"

namespace korvo {

ExifToolArguments positionArguments(
    const std::filesystem::path& file, const std::optional<Coordinate>& position)
{
    const auto parts = fileParts(file).value_or(FileParts());
    if (position && parts.xmp && hasDamagedXmp(file))
        throw ExifToolError::failed(damagedXmp);
    return position ? writeGPSArguments(*position, file, parts) : stripGPSArguments(file, parts);
}

void checkPosition(const std::filesystem::path& file, const std::optional<Coordinate>& position)
{
    if (!fileParts(file))
        return;
    const auto held = readGPS(file);
    if (held.has_value() != position.has_value() || (held && !isSamePlace(*held, *position)))
        throw ExifToolError::failed(position
                ? "does not hold the position after writing it; the library does"
                : "still holds a position after taking it out; the library does not");
}

} // namespace korvo
