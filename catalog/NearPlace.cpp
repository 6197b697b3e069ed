#include "catalog/NearPlace.h"

#include "base/JsonDocument.h"
#include "base/JsonError.h"
#include "base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace korvo {

namespace {

constexpr double earthDiameter = 12742; // kilometres
constexpr double toRadians = std::numbers::pi / 180;
/// Rounding must not put into the far what is just near enough.
constexpr double millimetre = 1e-6; // in kilometres
constexpr double margin = 1e-9; // degrees, a tenth of a millimetre

std::optional<NearPlace> ifInRange(const NearPlace& place)
{
    const bool inRange = std::isfinite(place.kilometres) && place.kilometres >= 0
        && std::abs(place.latitude) <= 90 && std::abs(place.longitude) <= 180;
    return inRange ? std::optional(place) : std::nullopt;
}

bool isWord(std::string_view token)
{
    constexpr std::array<std::string_view, 6> words{"km", "of", "within", "near", "kilometres", "kilometers"};
    return std::find(words.begin(), words.end(), token) != words.end();
}

/// The three numbers of a text in words; nothing for any other number of them and for unknown words.
std::optional<NearPlace> fromWords(std::string_view text)
{
    std::vector<double> numbers;
    while (!text.empty()) {
        const auto end = std::min(text.find_first_of(" \t,;|/"), text.size());
        auto token = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (token.ends_with("km"))
            token.remove_suffix(2);
        double side = 1;
        if (!token.empty() && std::string_view("nesw").find(token.back()) != std::string_view::npos) {
            side = token.back() == 's' || token.back() == 'w' ? -1 : 1;
            token.remove_suffix(1);
        }
        if (token.ends_with("°"))
            token.remove_suffix(std::string_view("°").size());
        if (const auto number = typedNumber(token))
            numbers.push_back(*number * side);
        else if (token.empty() && side < 0 && !numbers.empty())
            numbers.back() *= side; // "48.1 S"
        else if (!token.empty() && !isWord(token))
            return std::nullopt;
    }
    if (numbers.size() != 3)
        return std::nullopt;
    return NearPlace{numbers[0], numbers[1], numbers[2]};
}

/// The member of the first name that is there.
double numberNamed(JsonValue object, std::initializer_list<std::string_view> names)
{
    for (const auto name : names)
        if (const auto value = object.member(name))
            return value.number();
    return std::nan("");
}

std::optional<NearPlace> fromJSON(std::string_view text)
{
    try {
        const JsonDocument document(text);
        const auto root = document.root();
        return NearPlace{numberNamed(root, {"kilometres", "kilometers", "km", "radius"}),
            numberNamed(root, {"latitude", "lat"}), numberNamed(root, {"longitude", "lon", "lng"})};
    } catch (const JsonError&) {
        return std::nullopt; // what somebody typed is no place, which the editor shows
    }
}

std::string shortest(double number)
{
    char digits[32];
    return {digits, std::to_chars(digits, std::end(digits), number).ptr};
}

/// How far the longitude of a point within `angle` (radians) may be, in degrees: asin(sin d / cos φ), the
/// tangent meridians, unless the circle holds a pole.
double reachOfLongitude(double angle, double latitude)
{
    if (std::abs(latitude) * toRadians + angle >= std::numbers::pi / 2)
        return 180;
    return std::asin(std::min(1.0, std::sin(angle) / std::cos(latitude * toRadians))) / toRadians;
}

double squared(double number)
{
    return number * number;
}

/// Of the angle between two positions in degrees.
double haversine(double cosine1, double latitude1, double longitude1, double latitude2, double longitude2)
{
    constexpr double toHalf = toRadians / 2;
    return squared(std::sin((latitude2 - latitude1) * toHalf))
        + cosine1 * std::cos(latitude2 * toRadians) * squared(std::sin((longitude2 - longitude1) * toHalf));
}

} // namespace

std::string text(const NearPlace& place)
{
    return shortest(place.kilometres) + " km of " + shortest(place.latitude) + ", "
        + shortest(place.longitude);
}

std::optional<NearPlace> parseNearPlace(std::string_view text)
{
    const auto value = trimmed(text);
    const auto place = value.starts_with('{') ? fromJSON(value) : fromWords(asciiLower(value));
    return place ? ifInRange(*place) : std::nullopt;
}

double distanceInKilometres(double latitude1, double longitude1, double latitude2, double longitude2)
{
    const double a = haversine(std::cos(latitude1 * toRadians), latitude1, longitude1, latitude2, longitude2);
    return earthDiameter * std::asin(std::min(1.0, std::sqrt(a)));
}

NearTest::NearTest(const NearPlace& place) : place_(place), cosine_(std::cos(place.latitude * toRadians))
{
    const double angle = std::min((place.kilometres + millimetre) / (earthDiameter / 2), std::numbers::pi);
    // The function is flat near the antipode: rounding there is more than the millimetre.
    haversineReach_ = squared(std::sin(angle / 2)) * (1 + 4 * std::numeric_limits<double>::epsilon());
    latitudeReach_ = angle / toRadians + margin;
    longitudeReach_ = reachOfLongitude(angle, place.latitude) + margin;
}

bool NearTest::holds(double latitude, double longitude) const
{
    if (std::abs(latitude - place_.latitude) > latitudeReach_)
        return false;
    const double apart = std::abs(longitude - place_.longitude);
    if (std::min(apart, 360 - apart) > longitudeReach_)
        return false;
    const double a = haversine(cosine_, place_.latitude, place_.longitude, latitude, longitude);
    return std::min(1.0, a) <= haversineReach_;
}

} // namespace korvo
