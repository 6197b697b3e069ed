#include "metadata/ExifBlock.h"
#include "metadata/containers/Containers.h"

#include <array>

namespace korvo {

namespace {

/// What Panasonic's and Leica's raw files keep in their first directory in their own way.
struct Rw2Directory {
    std::array<std::uint32_t, 4> borders{}; ///< of the picture on the sensor: top, left, bottom, right
    std::optional<ByteRange> preview;
};

Rw2Directory readDirectory(const ExifBlock& block)
{
    constexpr std::uint16_t firstBorder = 0x0004, lastBorder = 0x0007, previewTag = 0x002e;
    Rw2Directory directory;
    block.forEachEntry(block.firstDirectory(), [&](const ExifBlock::Entry& entry) {
        if (entry.tag >= firstBorder && entry.tag <= lastBorder)
            directory.borders[entry.tag - firstBorder] = block.integer(entry).value_or(0);
        else if (entry.tag == previewTag)
            directory.preview = block.range(entry);
    });
    return directory;
}

} // namespace

MetadataBlocks findInRw2(FileWindow& file, ByteRange area)
{
    auto blocks = findInTiff(file, area);
    const auto block = ExifBlock::open(file, area);
    const auto directory = block ? readDirectory(*block) : Rw2Directory();
    const auto [top, left, bottom, right] = directory.borders;
    if (right > left && bottom > top)
        blocks.size = {right - left, bottom - top};
    if (directory.preview)
        blocks.furtherExif = findInJpeg(file, *directory.preview).exif;
    return blocks;
}

} // namespace korvo
