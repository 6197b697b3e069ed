#include "base/JsonWriter.h"

#include "base/JsonError.h"
#include "base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace korvo {

namespace {

/// Room for every 64-bit integer and for the shortest form of every double.
using Digits = std::array<char, 32>;

template <typename... Number>
std::string_view printed(Digits& digits, Number... number)
{
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number...).ptr;
    return {digits.data(), static_cast<std::size_t>(end - digits.data())};
}

std::string_view shortest(Digits& digits, double value)
{
    constexpr double exactIntegers = 9007199254740992; // 2^53
    if (value == 0 && std::signbit(value))
        return "-0.0"; // readers take -0 for the integer 0
    // Whole numbers of more digits than a 64-bit integer holds must not look like integers to readers.
    if (std::fabs(value) >= exactIntegers)
        return printed(digits, value, std::chars_format::scientific);
    if (value == std::trunc(value))
        return printed(digits, static_cast<std::int64_t>(value));
    return printed(digits, value);
}

constexpr bool mustEscape(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

constexpr bool isPlain(char c)
{
    return static_cast<unsigned char>(c) < 0x80 && !mustEscape(c);
}

void appendEscaped(std::string& out, char c)
{
    constexpr std::string_view named = "\"\\\b\f\n\r\t";
    constexpr std::string_view letters = "\"\\bfnrt";
    constexpr std::string_view hex = "0123456789abcdef";
    out += '\\';
    if (const auto at = named.find(c); at != std::string_view::npos) {
        out += letters[at];
        return;
    }
    out += "u00";
    out += hex[static_cast<std::size_t>(c) >> 4];
    out += hex[static_cast<std::size_t>(c) & 15];
}

} // namespace

void JsonWriter::key(std::string_view key)
{
    text(key);
    text_ += ':';
}

void JsonWriter::integer(std::int64_t value)
{
    Digits digits;
    raw(printed(digits, value));
}

void JsonWriter::integer(std::uint64_t value)
{
    Digits digits;
    raw(printed(digits, value));
}

void JsonWriter::number(double value)
{
    if (!std::isfinite(value))
        throw JsonError(JsonError::Case::notFinite, "would hold a number that is not finite");
    Digits digits;
    raw(shortest(digits, value));
}

void JsonWriter::text(std::string_view value)
{
    separate();
    text_ += '"';
    if (std::all_of(value.begin(), value.end(), isPlain))
        text_ += value;
    else
        quoted(repairedUtf8(value));
    text_ += '"';
}

void JsonWriter::quoted(std::string_view text)
{
    for (const char c : text)
        if (mustEscape(c))
            appendEscaped(text_, c);
        else
            text_ += c;
}

void JsonWriter::open(char bracket)
{
    if (depth_ == maxDepth_)
        throw JsonError(JsonError::Case::tooDeep, "would be nested too deeply");
    ++depth_;
    separate();
    text_ += bracket;
}

void JsonWriter::close(char bracket)
{
    --depth_;
    text_ += bracket;
}

void JsonWriter::raw(std::string_view token)
{
    separate();
    text_ += token;
}

/// A comma goes before all but what comes first or follows its key, as the last character tells.
void JsonWriter::separate()
{
    const char last = text_.empty() ? '[' : text_.back();
    if (last != '[' && last != '{' && last != ':')
        text_ += ',';
}

} // namespace korvo
