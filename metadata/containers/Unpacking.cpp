#include "metadata/containers/Unpacking.h"

#include <zlib.h>

namespace korvo {

namespace {

int hexadecimalDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// Inflates into a buffer that grows with what comes out; whether all came out.
bool inflateInto(std::vector<std::uint8_t>& out, z_stream& stream, std::size_t most)
{
    int result = Z_OK;
    while (result == Z_OK && out.size() < most) {
        const auto done = out.size();
        const auto room = std::min(std::max<std::size_t>(4096, done), most - done);
        out.resize(done + room);
        stream.next_out = out.data() + done;
        stream.avail_out = static_cast<uInt>(room);
        result = ::inflate(&stream, Z_NO_FLUSH);
        out.resize(done + (room - stream.avail_out));
    }
    return result == Z_STREAM_END;
}

} // namespace

std::optional<ByteRange> inflated(FileWindow& file, ByteRange packed)
{
    const auto bytes = file.view(packed);
    z_stream stream{};
    if (!bytes || ::inflateInit(&stream) != Z_OK)
        return std::nullopt;
    stream.next_in = const_cast<Bytef*>(bytes->data());
    stream.avail_in = static_cast<uInt>(bytes->size());
    std::vector<std::uint8_t> out;
    const bool whole = inflateInto(out, stream, file.roomToAppend());
    ::inflateEnd(&stream);
    return whole ? file.append(std::move(out)) : std::nullopt;
}

std::vector<std::uint8_t> fromHexadecimal(std::string_view text)
{
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 2);
    int high = -1;
    for (const char c : text) {
        const int digit = hexadecimalDigit(c);
        if (digit < 0)
            continue;
        if (high >= 0)
            bytes.push_back(static_cast<std::uint8_t>(high << 4 | digit));
        high = high < 0 ? digit : -1;
    }
    return bytes;
}

ByteRange withoutExifMark(FileWindow& file, ByteRange block)
{
    constexpr std::string_view mark("Exif\0\0", 6);
    const auto start = file.start(block, mark.size());
    return start && start->text() == mark ? block.from(mark.size()) : block;
}

} // namespace korvo
