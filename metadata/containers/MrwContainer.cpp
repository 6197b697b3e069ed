#include "metadata/containers/Containers.h"

#include <utility>

namespace korvo {

namespace {

/// Its picture is a preview, whose size says nothing of the photo.
void takeTiff(MetadataBlocks& blocks, MetadataBlocks&& tiff)
{
    tiff.size = blocks.size;
    blocks = std::move(tiff);
}

} // namespace

/// Minolta's raw files: blocks of a mark, a length and data, of which "PRD" tells the size and "TTW" is a
/// TIFF structure.
MetadataBlocks findInMrw(FileWindow& file, ByteRange area)
{
    MetadataBlocks blocks;
    constexpr std::uint64_t headerSize = 8;
    auto rest = area.from(headerSize);
    while (const auto header = file.start(rest, headerSize)) {
        const auto mark = header->text().substr(1, 3);
        const auto length = header->bigEndian(4, 4).value_or(0);
        const auto data = rest.from(headerSize).first(length);
        if (const auto sizes = mark == "PRD" ? file.start(data, 16) : std::nullopt)
            blocks.size = {sizes->bigEndian(14, 2).value_or(0), sizes->bigEndian(12, 2).value_or(0)};
        else if (mark == "TTW")
            takeTiff(blocks, findInTiff(file, data));
        else if (mark != "WBG" && mark != "RIF")
            break; // the picture's data
        rest = rest.from(headerSize + length);
    }
    return blocks;
}

} // namespace korvo
