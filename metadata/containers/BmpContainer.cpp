#include "metadata/containers/Containers.h"

#include <cstdlib>

namespace korvo {

MetadataBlocks findInBmp(FileWindow& file, ByteRange area)
{
    MetadataBlocks blocks;
    const auto header = file.start(area, 26);
    if (!header)
        return blocks;
    constexpr std::uint64_t oldHeaderSize = 12;
    const unsigned width = header->littleEndian(14, 4) == oldHeaderSize ? 2 : 4;
    const auto side = [&](std::uint64_t at) {
        const auto value = static_cast<std::uint32_t>(header->littleEndian(at, width).value_or(0));
        // A height below 0 says that the rows come from top to bottom.
        return static_cast<std::uint64_t>(std::abs(std::int64_t(static_cast<std::int32_t>(value))));
    };
    blocks.size = {side(18), side(18 + width)};
    return blocks;
}

} // namespace korvo
