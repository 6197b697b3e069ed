#include "metadata/ExifReader.h"

#include "metadata/ExifTagReader.h"
#include "metadata/MetadataError.h"
#include "metadata/Xmp.h"
#include "metadata/containers/Containers.h"

namespace korvo {

namespace {

/// What `read` makes of a file's metadata; nothing when the file cannot be read, which is an answer here and
/// no failure: the photo then has no camera facts.
template <class Read>
auto readBlocks(const std::filesystem::path& path, Read read)
    -> decltype(read(std::declval<FileWindow&>(), MetadataBlocks()))
try {
    FileWindow file(path);
    const auto blocks = findMetadata(file);
    if (!blocks)
        return std::nullopt;
    return read(file, *blocks);
} catch (const MetadataError&) {
    return std::nullopt;
}

} // namespace

std::optional<PhotoExifInfo> readExif(const std::filesystem::path& path)
{
    return readBlocks(
        path, [](FileWindow& file, const MetadataBlocks& blocks) -> std::optional<PhotoExifInfo> {
            auto info = exifInfo(readExifTags(file, blocks), blocks.size);
            return info == PhotoExifInfo() ? std::nullopt : std::optional(std::move(info));
        });
}

std::optional<Coordinate> readGPS(const std::filesystem::path& path)
{
    return readBlocks(path,
        [](FileWindow& file, const MetadataBlocks& blocks) { return readExifTags(file, blocks).coordinate; });
}

std::optional<FileParts> fileParts(const std::filesystem::path& path)
{
    return readBlocks(path, [](FileWindow& file, const MetadataBlocks& blocks) {
        auto parts = blocks.parts;
        for (const auto& packet : {blocks.xmp, blocks.extendedXmp})
            if (const auto bytes = packet ? file.view(*packet) : std::nullopt)
                parts.xmp |= mentionsPosition(*bytes);
        return std::optional(parts);
    });
}

} // namespace korvo
