#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// A count as people read it: "999", "1,000".
std::string grouped(std::size_t count);

/// `count` and the noun in the right number: "1 photo", "0 photos", "3,000 photos".
std::string counted(std::size_t count, std::string_view noun);

/// `noun`, with an "s" unless `count` is 1.
std::string plural(std::size_t count, std::string_view noun);

/// "512 bytes", "12.3 MB": in powers of 1000.
std::string sizeText(std::uint64_t bytes);

/// An error's text as a sentence: with a capital letter and a full stop.
std::string asSentence(std::string text);

/// Without white space (blank, tab, line breaks, form feed, vertical tab) at both ends.
std::string_view trimmed(std::string_view text);

/// Whether the text holds nothing but white space, in any script's sense.
bool isBlank(std::string_view text);

/// The pieces between separators, empty ones included; one piece for text without a separator.
std::vector<std::string_view> split(std::string_view text, char separator);

/// The text with the letters A to Z in lower case and all else as it is, as SQLite's NOCASE folds.
std::string asciiLower(std::string_view text);

/// Less than, equal to or greater than 0 in the order of SQLite's NOCASE collation.
int compareNoCase(std::string_view a, std::string_view b);

/// The text as one line that no terminal takes for orders: control characters are written as \n, \t, \r and
/// \u001B.
std::string printable(std::string_view text);

/// The number that the text is, from the first character to the last; nothing for one that T cannot hold.
template <std::integral T>
std::optional<T> wholeNumber(std::string_view text)
{
    T number{};
    const auto* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// A number as people type it: with blanks around it, and with a plus sign. Nothing for what is not finite.
std::optional<double> typedNumber(std::string_view text);

/// Whether the text is well-formed UTF-8.
bool isUtf8(std::string_view text);

/// The text itself when it is well-formed UTF-8, else with each offending byte replaced by U+FFFD.
std::string repairedUtf8(std::string_view text);

} // namespace korvo
