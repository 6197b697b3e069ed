#include "base/Text.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace korvo {

namespace {

constexpr char lowerByte(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The length of the well-formed UTF-8 sequence at the start of the text, 0 when there is none.
/// Unicode 15, table 3-7.
std::size_t sequenceLength(std::string_view text)
{
    const auto byte
        = [&](std::size_t i) { return i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0U; };
    const auto within
        = [](unsigned value, unsigned low, unsigned high) { return value >= low && value <= high; };
    const unsigned first = byte(0);
    if (first < 0x80)
        return text.empty() ? 0 : 1;
    if (within(first, 0xC2, 0xDF))
        return within(byte(1), 0x80, 0xBF) ? 2 : 0;
    if (within(first, 0xE0, 0xEF)) {
        const unsigned low = first == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = first == 0xED ? 0x9F : 0xBF;
        return within(byte(1), low, high) && within(byte(2), 0x80, 0xBF) ? 3 : 0;
    }
    if (within(first, 0xF0, 0xF4)) {
        const unsigned low = first == 0xF0 ? 0x90 : 0x80;
        const unsigned high = first == 0xF4 ? 0x8F : 0xBF;
        return within(byte(1), low, high) && within(byte(2), 0x80, 0xBF) && within(byte(3), 0x80, 0xBF) ? 4
                                                                                                        : 0;
    }
    return 0;
}

void appendEscape(std::string& text, unsigned character)
{
    constexpr char digits[] = "0123456789ABCDEF";
    (text += "\\u00") += {digits[character >> 4], digits[character & 15]};
}

} // namespace

std::string plural(std::size_t count, std::string_view noun)
{
    return std::string(noun) + (count == 1 ? "" : "s");
}

std::string grouped(std::size_t count)
{
    auto digits = std::to_string(count);
    for (auto end = digits.size(); end > 3; end -= 3)
        digits.insert(end - 3, ",");
    return digits;
}

std::string counted(std::size_t count, std::string_view noun)
{
    return grouped(count) + " " + plural(count, noun);
}

std::string sizeText(std::uint64_t bytes)
{
    constexpr std::array units = {"kB", "MB", "GB", "TB"};
    if (bytes < 1000)
        return counted(bytes, "byte");
    auto amount = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    for (; amount >= 999.95 && unit + 1 < units.size(); ++unit)
        amount /= 1000;
    char digits[32];
    const auto end = std::to_chars(digits, std::end(digits), amount, std::chars_format::fixed, 1).ptr;
    return std::string(digits, end) + " " + units[unit];
}

std::string asSentence(std::string text)
{
    if (text.empty())
        return text;
    if (std::string_view(".!?").find(text.back()) == std::string_view::npos)
        text += '.';
    if (text[0] >= 'a' && text[0] <= 'z')
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text;
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view space = " \t\r\n\f\v";
    const auto first = text.find_first_not_of(space);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

bool isBlank(std::string_view text)
{
    const auto units = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    const char16_t* const first = units.getBuffer();
    return std::all_of(first, first + units.length(), [](char16_t unit) { return u_isUWhiteSpace(unit); });
}

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    for (;;) {
        const auto at = text.find(separator);
        pieces.push_back(text.substr(0, at));
        if (at == std::string_view::npos)
            return pieces;
        text.remove_prefix(at + 1);
    }
}

std::string asciiLower(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), lowerByte);
    return lower;
}

int compareNoCase(std::string_view a, std::string_view b)
{
    const auto common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i)
        if (const int difference
            = static_cast<std::uint8_t>(lowerByte(a[i])) - static_cast<std::uint8_t>(lowerByte(b[i])))
            return difference;
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

std::string printable(std::string_view text)
{
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<std::uint8_t>(text[i + 1]) : 0U;
        const bool isHighControl = byte == 0xC2 && next >= 0x80 && next < 0xA0; // U+0080 to U+009F
        if (byte == '\n' || byte == '\t' || byte == '\r')
            (shown += '\\') += byte == '\n' ? 'n' : byte == '\t' ? 't' : 'r';
        else if (byte < 0x20 || byte == 0x7F || isHighControl)
            appendEscape(shown, isHighControl ? next : byte);
        else
            shown += text[i];
        i += isHighControl ? 1 : 0;
    }
    return shown;
}

std::optional<double> typedNumber(std::string_view text)
{
    auto digits = trimmed(text);
    if (digits.starts_with('+') && !digits.starts_with("+-"))
        digits.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isWhole = error == std::errc() && end == digits.data() + digits.size();
    return isWhole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const auto length = sequenceLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string repairedUtf8(std::string_view text)
{
    std::string repaired;
    repaired.reserve(text.size());
    while (!text.empty()) {
        const auto length = sequenceLength(text);
        repaired += length > 0 ? text.substr(0, length) : std::string_view("\uFFFD");
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return repaired;
}

} // namespace korvo
