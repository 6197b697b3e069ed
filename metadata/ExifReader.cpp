#include "metadata/ExifReader.h"

#include "metadata/ExifTagReader.h"
#include "metadata/MetadataError.h"
#include "metadata/containers/Containers.h"

namespace korvo {

namespace {

/// What `read` makes of a file's tags and picture size; nothing when the file cannot be read, which is an
/// answer here and no failure: the photo then has no camera facts.
template <class Read>
auto readTags(const std::filesystem::path& path, Read read) -> decltype(read(ExifTags(), PixelSize()))
try {
    FileWindow file(path);
    const auto blocks = findMetadata(file);
    if (!blocks)
        return std::nullopt;
    return read(readExifTags(file, *blocks), blocks->size);
} catch (const MetadataError&) {
    return std::nullopt;
}

} // namespace

std::optional<PhotoExifInfo> readExif(const std::filesystem::path& file)
{
    return readTags(file, [](const ExifTags& tags, PixelSize size) -> std::optional<PhotoExifInfo> {
        auto info = exifInfo(tags, size);
        return info == PhotoExifInfo() ? std::nullopt : std::optional(std::move(info));
    });
}

std::optional<Coordinate> readGPS(const std::filesystem::path& file)
{
    return readTags(file, [](const ExifTags& tags, PixelSize) { return tags.coordinate; });
}

} // namespace korvo
