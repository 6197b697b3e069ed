#include "metadata/containers/Photoshop.h"

namespace korvo {

namespace {

constexpr std::uint64_t iptcResource = 0x0404;

std::uint64_t padded(std::uint64_t length)
{
    return length + length % 2;
}

} // namespace

std::optional<ByteRange> findIptcInPhotoshop(FileWindow& file, ByteRange resources)
{
    const auto bytes = file.view(resources).value_or(Bytes());
    std::uint64_t at = 0;
    while (bytes.startsWith("8BIM", at)) {
        const auto id = bytes.bigEndian(at + 4, 2).value_or(0);
        const auto nameLength = bytes.bigEndian(at + 6, 1).value_or(0);
        const auto sizeAt = at + 6 + padded(1 + nameLength);
        const auto size = bytes.bigEndian(sizeAt, 4);
        if (!size || !bytes.slice(sizeAt + 4, *size))
            return std::nullopt;
        if (id == iptcResource)
            return ByteRange{resources.offset + sizeAt + 4, *size};
        at = sizeAt + 4 + padded(*size);
    }
    return std::nullopt;
}

} // namespace korvo
