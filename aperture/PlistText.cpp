#include "aperture/PlistText.h"

#include "base/Text.h"

#include <algorithm>
#include <string>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace korvo {

namespace {

void append(std::string& text, UChar32 character)
{
    char encoded[U8_MAX_LENGTH];
    std::size_t length = 0;
    U8_APPEND_UNSAFE(encoded, length, character);
    text.append(encoded, length);
}

bool isAscii(Bytes bytes)
{
    std::uint8_t seen = 0; // without a way out early, the loop runs over many bytes at once
    for (std::size_t i = 0; i < bytes.size(); ++i)
        seen |= bytes[i];
    return seen < 0x80;
}

std::string_view kept(std::string_view text, std::pmr::memory_resource& memory)
{
    auto* const copy = static_cast<char*>(memory.allocate(text.size(), 1));
    std::copy(text.begin(), text.end(), copy);
    return {copy, text.size()};
}

} // namespace

std::string_view textFromUtf8(Bytes bytes, std::pmr::memory_resource& memory)
{
    if (isAscii(bytes) || isUtf8(bytes.text()))
        return kept(bytes.text(), memory);
    std::string text;
    const auto size = static_cast<std::int64_t>(bytes.size());
    for (std::int64_t at = 0; at < size;) {
        UChar32 character = 0;
        U8_NEXT_OR_FFFD(bytes.data(), at, size, character);
        append(text, character);
    }
    return kept(text, memory);
}

std::string_view textFromUtf16(Bytes bytes, std::pmr::memory_resource& memory)
{
    const auto unit
        = [&](std::size_t i) { return static_cast<char16_t>(bytes[2 * i] << 8 | bytes[2 * i + 1]); };
    const auto units = bytes.size() / 2;
    std::string text;
    for (std::size_t i = 0; i < units; ++i) {
        UChar32 character = unit(i);
        if (U16_IS_LEAD(character) && i + 1 < units && U16_IS_TRAIL(unit(i + 1)))
            character = U16_GET_SUPPLEMENTARY(character, unit(++i));
        append(text, U_IS_SURROGATE(character) ? 0xFFFD : character);
    }
    return kept(text, memory);
}

} // namespace korvo
