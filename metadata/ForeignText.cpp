#include "metadata/ForeignText.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace korvo {

namespace {

/// What code page 1252 has at 0x80 to 0x9F, where Latin-1 has control characters; unused places keep their
/// number.
constexpr std::array<std::uint16_t, 32> windowsCharacters{0x20AC, 0x81, 0x201A, 0x0192, 0x201E, 0x2026,
    0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D, 0x017D, 0x8F, 0x90, 0x2018, 0x2019, 0x201C,
    0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D, 0x017E, 0x0178};

/// For code points of up to 16 bits, which are no surrogates.
void appendUtf8(std::string& text, std::uint32_t character)
{
    const auto append = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80)
        return append(character);
    if (character < 0x800) {
        append(0xC0 | character >> 6);
    } else {
        append(0xE0 | character >> 12);
        append(0x80 | (character >> 6 & 0x3F));
    }
    append(0x80 | (character & 0x3F));
}

} // namespace

std::string fromWindowsLatin(std::string_view text)
{
    std::string utf8;
    utf8.reserve(text.size() + 16);
    for (const char c : text) {
        const auto byte = static_cast<std::uint8_t>(c);
        appendUtf8(utf8, byte >= 0x80 && byte < 0xA0 ? windowsCharacters[byte - 0x80] : byte);
    }
    return utf8;
}

std::string fromUnknownEncoding(std::string_view text)
{
    const bool isAscii
        = std::ranges::all_of(text, [](char c) { return static_cast<std::uint8_t>(c) < 0x80; });
    return isAscii || isUtf8(text) ? std::string(text) : fromWindowsLatin(text);
}

} // namespace korvo
