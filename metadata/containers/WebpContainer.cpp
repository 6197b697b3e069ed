#include "metadata/containers/Containers.h"
#include "metadata/containers/RiffChunks.h"
#include "metadata/containers/Unpacking.h"

namespace korvo {

namespace {

constexpr std::uint64_t fileHeaderSize = 12; // "RIFF", length, "WEBP"

std::uint64_t bits(Bytes bytes, std::uint64_t offset, unsigned first, unsigned count)
{
    return bytes.littleEndian(offset, 4).value_or(0) >> first & ((1U << count) - 1);
}

/// RFC 9649, sections 2.5 to 2.7.
PixelSize sizeIn(FileWindow& file, const RiffChunks::Chunk& chunk)
{
    const auto data = file.start(chunk.data, 10);
    if (!data)
        return {};
    if (chunk.type == "VP8X")
        return {data->littleEndian(4, 3).value_or(0) + 1, data->littleEndian(7, 3).value_or(0) + 1};
    if (chunk.type == "VP8 ")
        return {bits(*data, 6, 0, 14), bits(*data, 6, 16, 14)};
    if (chunk.type == "VP8L")
        return {bits(*data, 1, 0, 14) + 1, bits(*data, 1, 14, 14) + 1};
    return {};
}

} // namespace

MetadataBlocks findInWebp(FileWindow& file, ByteRange area)
{
    MetadataBlocks blocks;
    RiffChunks chunks(file, area.from(fileHeaderSize));
    while (const auto chunk = chunks.next()) {
        if (blocks.size.empty())
            blocks.size = sizeIn(file, *chunk);
        if (chunk->type == "EXIF")
            blocks.exif = withoutExifMark(file, chunk->data);
        else if (chunk->type == "XMP ")
            blocks.xmp = chunk->data;
    }
    return blocks;
}

} // namespace korvo
