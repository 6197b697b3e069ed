#include "metadata/containers/Containers.h"

namespace korvo {

namespace {

constexpr std::uint64_t previewAt = 84, sensorDataAt = 92;
constexpr std::uint64_t croppedSizeTag = 0x0111;

std::optional<ByteRange> rangeAt(FileWindow& file, ByteRange area, std::uint64_t at)
{
    const auto bytes = file.start(area.from(at), 8);
    if (!bytes)
        return std::nullopt;
    return area.from(bytes->bigEndian(0, 4).value_or(0)).first(bytes->bigEndian(4, 4).value_or(0));
}

/// The records about the sensor's picture: their count, then each with its tag, its length and its data.
PixelSize croppedSize(FileWindow& file, ByteRange records)
{
    const auto bytes = file.view(records).value_or(Bytes());
    const auto count = bytes.bigEndian(0, 4).value_or(0);
    std::uint64_t at = 4;
    for (std::uint64_t i = 0; i < count; ++i) {
        const auto tag = bytes.bigEndian(at, 2), length = bytes.bigEndian(at + 2, 2);
        if (!tag || !length)
            break;
        if (tag == croppedSizeTag)
            return {bytes.bigEndian(at + 6, 2).value_or(0), bytes.bigEndian(at + 4, 2).value_or(0)};
        at += 4 + *length;
    }
    return {};
}

} // namespace

MetadataBlocks findInRaf(FileWindow& file, ByteRange area)
{
    const auto preview = rangeAt(file, area, previewAt);
    auto blocks = preview ? findInJpeg(file, *preview) : MetadataBlocks();
    if (const auto records = rangeAt(file, area, sensorDataAt))
        if (const auto size = croppedSize(file, *records); !size.empty())
            blocks.size = size;
    return blocks;
}

} // namespace korvo
