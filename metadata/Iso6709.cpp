#include "metadata/Iso6709.h"

#include <charconv>
#include <cmath>

namespace korvo {

namespace {

/// Takes one signed number from the front; nothing when none stands there.
std::optional<double> takeDegrees(std::string_view& text, std::size_t degreeDigits)
{
    if (!text.starts_with('+') && !text.starts_with('-'))
        return std::nullopt;
    const double sign = text.front() == '-' ? -1 : 1;
    const auto number = text.substr(1, text.find_first_not_of("0123456789.", 1) - 1);
    double value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error != std::errc() || end != number.data() + number.size())
        return std::nullopt;
    text.remove_prefix(1 + number.size());
    const auto digits = std::min(number.find('.'), number.size());
    if (digits <= degreeDigits)
        return sign * value;
    if (digits == degreeDigits + 2) // and two digits of minutes
        return sign * (std::floor(value / 100) + std::fmod(value, 100) / 60);
    const double minutes = std::floor(std::fmod(value, 10000) / 100);
    return sign * (std::floor(value / 10000) + minutes / 60 + std::fmod(value, 100) / 3600);
}

} // namespace

std::optional<Coordinate> parseIso6709(std::string_view text)
{
    constexpr std::size_t latitudeDigits = 2, longitudeDigits = 3;
    const auto latitude = takeDegrees(text, latitudeDigits);
    const auto longitude = latitude ? takeDegrees(text, longitudeDigits) : std::nullopt;
    if (!longitude || std::abs(*latitude) > 90 || std::abs(*longitude) > 180)
        return std::nullopt;
    return Coordinate{*latitude, *longitude};
}

} // namespace korvo
