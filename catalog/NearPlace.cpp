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
#include <utility>
#include <vector>

namespace korvo {

namespace {

constexpr std::string_view northSouth = "ns", eastWest = "ew"; // positive first
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

bool isOfAxis(char letter, std::string_view letters)
{
    return letters.find(letter) != std::string_view::npos;
}

bool isCompassLetter(char letter)
{
    return isOfAxis(letter, "nesw");
}

struct WrittenNumber {
    double value = 0;
    char side = 0; // the compass letter beside it
};

/// A number with what people write at its ends: "10km", "48.1°n", "w11.5".
std::optional<WrittenNumber> writtenNumber(std::string_view token)
{
    char side = 0;
    for (const std::string_view unit : {"km", "kilometres", "kilometers"})
        if (token.ends_with(unit))
            token.remove_suffix(unit.size());
    if (!token.empty() && isCompassLetter(token.back())) {
        side = token.back();
        token.remove_suffix(1);
    } else if (!token.empty() && isCompassLetter(token.front())) {
        side = token.front();
        token.remove_prefix(1);
    }
    if (token.ends_with("°"))
        token.remove_suffix(std::string_view("°").size());
    const auto number = typedNumber(token);
    return number ? std::optional(WrittenNumber{*number, side}) : std::nullopt;
}

/// The numbers of a text in words. A letter that stands by itself belongs to the number before it, where that
/// has none yet and is of its axis, else to the next one. Nothing for unknown words and letters of no number.
std::optional<std::vector<WrittenNumber>> writtenNumbers(std::string_view text)
{
    std::vector<WrittenNumber> numbers;
    char sideOfNext = 0;
    while (!text.empty()) {
        const auto end = std::min(text.find_first_of(" \t\r\n,;|/"), text.size());
        const auto token = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (token.empty() || isWord(token))
            continue;
        if (token.size() == 1 && isCompassLetter(token.front())) {
            const bool closes = sideOfNext == 0 && numbers.size() > 1 && numbers.back().side == 0
                && isOfAxis(token.front(), numbers.size() == 2 ? northSouth : eastWest);
            (closes ? numbers.back().side : sideOfNext) = token.front();
        } else if (auto number = writtenNumber(token); number && (sideOfNext == 0 || number->side == 0)) {
            number->side = std::max(number->side, std::exchange(sideOfNext, '\0'));
            numbers.push_back(*number);
        } else {
            return std::nullopt;
        }
    }
    return sideOfNext == 0 ? std::optional(numbers) : std::nullopt;
}

/// A coordinate with its sign, where its letter is one of its axis and says nothing that the sign says too.
double signedBy(const WrittenNumber& number, std::string_view axis)
{
    if (number.side == 0)
        return number.value;
    if (number.value < 0 || !isOfAxis(number.side, axis))
        return std::nan("");
    return number.side == axis[1] ? -number.value : number.value;
}

std::optional<NearPlace> fromWords(std::string_view text)
{
    const auto numbers = writtenNumbers(text);
    if (!numbers || numbers->size() != 3 || numbers->front().side != 0)
        return std::nullopt;
    return NearPlace{
        numbers->front().value, signedBy((*numbers)[1], northSouth), signedBy((*numbers)[2], eastWest)};
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
