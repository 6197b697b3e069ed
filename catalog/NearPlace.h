#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// What a photo is to be near to: the argument of the `near` operator.
struct NearPlace {
    double kilometres = 0; // the radius, 0 or more
    double latitude = 0; // degrees, -90 to 90
    double longitude = 0; // degrees, -180 to 180

    friend bool operator==(const NearPlace&, const NearPlace&) = default;
};

/// "10 km of 48.137, 11.575", exact to the last digit of each number.
std::string text(const NearPlace& place);

/// The place of such a text, of three numbers in that order however they are separated ("10;48.137;11.575"),
/// or of a JSON object ({"kilometres":10,"latitude":48.137,"longitude":11.575}, and shorter names). Nothing
/// for other texts and for numbers out of range.
std::optional<NearPlace> parseNearPlace(std::string_view text);

/// The great-circle distance in kilometres between two positions in degrees (haversine formula, on a sphere
/// of 6371 km).
double distanceInKilometres(double latitude1, double longitude1, double latitude2, double longitude2);

/// Tells positions near a place from others, far ones by a box around it without trigonometry.
class NearTest {
public:
    explicit NearTest(const NearPlace& place);

    bool holds(double latitude, double longitude) const;

private:
    NearPlace place_;
    double cosine_; // of its latitude
    double haversineReach_; // of the radius
    double latitudeReach_; // degrees to either side
    double longitudeReach_;
};

} // namespace korvo
