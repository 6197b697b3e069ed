#include "catalog/SmartAlbumMatcher.h"

#include "base/Json.h"
#include "base/Text.h"
#include "tests/support/TimeZone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <random>

namespace korvo {

namespace {

using Field = SmartAlbumRule::Field;
using Op = SmartAlbumRule::Op;

PhotoItem photo(const char* filename)
{
    PhotoItem item;
    item.filename = filename;
    return item;
}

bool matches(const SmartAlbumRule& rule, const PhotoItem& item)
{
    return SmartAlbumMatcher({{rule}, true}).matches(item);
}

/// A local moment.
UnixTime at(int year, int month, int day, int hour, int minute = 0, int second = 0)
{
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    parts.tm_sec = second;
    parts.tm_isdst = -1;
    return static_cast<UnixTime>(std::mktime(&parts));
}

} // namespace

TEST(SmartAlbumRules, areStoredUnderTheirKeysAndReadWithAnyLeftOut)
{
    const SmartAlbumRules rules{
        {{Field::rating, Op::atLeast, "3"}, {Field::text, Op::notContains, "“x”"}}, false};
    EXPECT_EQ(toJson(rules),
        R"({"rules":[{"field":"rating","op":"atLeast","value":"3"},{"field":"text","op":"notContains","value":"“x”"}],"matchAll":false})");
    EXPECT_EQ(smartAlbumRules(toJson(rules)), rules);
    EXPECT_EQ(smartAlbumRules("{}"), SmartAlbumRules());
    for (const char* unreadable : {"", "[]", R"({"rules":[{"field":"colour","op":"is","value":""}]})",
             R"({"rules":[{"field":"rating","op":"is","value":3}]})",
             R"({"rules":[{"field":"rating","op":"is"}]})"})
        EXPECT_THROW(smartAlbumRules(unreadable), JsonError) << unreadable;
}

TEST(SmartAlbumRules, sayWhatIsWrongAndSuchARuleMatchesNothing)
{
    struct Case {
        SmartAlbumRule rule;
        const char* fault; // "" for a good one
    };
    auto item = photo("a.jpg");
    item.captureDate = 5.0;
    for (const auto& [rule, reason] :
        {
            Case{{Field::rating, Op::is, " +3 "}, ""},
            {{Field::rating, Op::contains, "3"}, "“Rating” does not take “contains”"},
            {{Field::rating, Op::isNot, "three"}, "“Rating” needs a number, as 3, not “three”"},
            {{Field::focalLength, Op::atMost, "1e999"}, "“Focal Length” needs a number, as 50, not “1e999”"},
            {{Field::label, Op::is, "red"}, ""},
            {{Field::label, Op::isNot, "9"},
                "“Label” needs a label: none, red, orange, yellow, green, blue, purple, gray, or 0 to 7, not "
                "“9”"},
            {{Field::label, Op::atMost, "4.5"},
                "“Label” needs a label: none, red, orange, yellow, green, blue, purple, gray, or 0 to 7, not "
                "“4.5”"},
            {{Field::date, Op::is, "2024-02-30"}, "“Date” needs a day as yyyy-mm-dd, not “2024-02-30”"},
            {{Field::kind, Op::isNot, "raw"}, "“Kind” needs photo or video, not “raw”"},
            {{Field::fileType, Op::is, " "}, "“File Type” needs a file extension, as jpeg, not “ ”"},
            {{Field::flagged, Op::is, ""}, ""},
            {{Field::adjusted, Op::isNot, "maybe"}, "“Adjusted” needs yes or no, not “maybe”"},
            {{Field::location, Op::near, "Berlin"},
                "“Location” needs a radius and a place, as 10 km of 48.14, 11.58, not “Berlin”"},
        }) {
        EXPECT_EQ(fault(rule).value_or(""), reason);
        if (*reason) {
            EXPECT_FALSE(matches(rule, item)) << reason;
            EXPECT_FALSE(SmartAlbumMatcher({{rule}, false}).matches(item));
            EXPECT_TRUE(SmartAlbumMatcher({{rule, {Field::kind, Op::is, "photo"}}, false}).matches(item));
        }
    }
}

TEST(SmartAlbumMatcher, aRejectedPhotoIsMinusOneWhateverItsStars)
{
    for (const int rating : {-1, -4}) {
        auto item = photo("a.jpg");
        item.rating = rating;
        EXPECT_TRUE(matches({Field::rating, Op::is, "-1"}, item)) << rating;
        EXPECT_FALSE(matches({Field::rating, Op::isNot, "-1"}, item)) << rating;
        EXPECT_TRUE(matches({Field::rating, Op::atLeast, "-1"}, item)) << rating;
        EXPECT_FALSE(matches({Field::rating, Op::is, "-4"}, item)) << rating;
    }
}

TEST(SmartAlbumMatcher, eachFieldHasItsWayOfComparing)
{
    auto item = photo("IMG_Straße.JPG");
    item.rating = 3;
    item.label = PhotoLabel::green;
    item.metadata = {.title = "Brücke in İstanbul", .keywords = "Night shot, Bridge", .creator = "Ana"};
    item.camera = "NIKON Z 6_2";
    item.focalLength = 35.5;
    item.people = "Ana, Bo, Smith, John";
    item.editsJSON = "{}";
    struct Case {
        SmartAlbumRule rule;
        bool matches;
    };
    for (const auto& [rule, expected] : {
             Case{{Field::rating, Op::atLeast, "3"}, true}, {{Field::rating, Op::atMost, "2.5"}, false},
             {{Field::label, Op::is, "Green"}, true}, {{Field::label, Op::isNot, "4"}, false},
             {{Field::focalLength, Op::is, "35.50"}, true}, {{Field::keyword, Op::is, "bridge"}, true},
             {{Field::keyword, Op::is, "night"}, false}, {{Field::keyword, Op::contains, "night"}, true},
             {{Field::keyword, Op::contains, "shot, bridge"}, false},
             {{Field::keyword, Op::isNot, "BRIDGE"}, false}, {{Field::person, Op::is, "bo"}, true},
             {{Field::person, Op::contains, "smith, john"}, true}, {{Field::person, Op::is, "smit"}, false},
             {{Field::keyword, Op::is, ""}, false}, {{Field::text, Op::is, ""}, false},
             {{Field::text, Op::isNot, ""}, true}, {{Field::text, Op::contains, "İSTANBUL"}, true},
             {{Field::text, Op::contains, "BRU\u0308CKE"}, true}, {{Field::text, Op::contains, "ana"}, true},
             {{Field::text, Op::is, "ANA"}, true}, {{Field::text, Op::notContains, "img"}, true},
             {{Field::filename, Op::contains, "STRASSE"}, true},
             {{Field::camera, Op::is, "nikon z 6_2"}, true},
             {{Field::lens, Op::notContains, "x"}, true}, // there is none
             {{Field::kind, Op::is, "photo"}, true}, {{Field::fileType, Op::is, "jpeg"}, true},
             {{Field::fileType, Op::is, ".jpg"}, true}, {{Field::fileType, Op::isNot, "tif"}, true},
             {{Field::flagged, Op::is, "yes"}, false}, {{Field::flagged, Op::isNot, "yes"}, true},
             {{Field::hasAlt, Op::is, "no"}, true}, {{Field::adjusted, Op::is, "true"}, true},
             {{Field::location, Op::near, "20037 km of 0, 0"}, false}, // it has none
         })
        EXPECT_EQ(matches(rule, item), expected) << toJson(rule);
    EXPECT_TRUE(matches({Field::kind, Op::is, "video"}, photo("a.MOV")));
    EXPECT_TRUE(matches({Field::fileType, Op::is, "TIFF"}, photo("a.tif")));
    for (const auto op : {Op::is, Op::atLeast, Op::atMost})
        EXPECT_FALSE(matches({Field::focalLength, op, "0"}, photo("a.jpg"))) << "it has none";
    EXPECT_TRUE(matches({Field::focalLength, Op::isNot, "0"}, photo("a.jpg")));
    EXPECT_TRUE(matches({Field::text, Op::is, ""}, photo("a.jpg")));
    item.people = "Smith, John";
    EXPECT_TRUE(matches({Field::person, Op::is, "SMITH, John"}, item));
    item.metadata.keywords = "a,, b,";
    EXPECT_FALSE(matches({Field::keyword, Op::is, ""}, item)) << "a comma too many is no keyword";
    item.metadata.caption = "ΟΔΟΣ";
    EXPECT_TRUE(matches({Field::text, Op::is, "οδος"}, item)) << "a final sigma is one";
}

TEST(SmartAlbumMatcher, aDateIsALocalCalendarDay)
{
    const TimeZone berlin("CET-1CEST,M3.5.0,M10.5.0/3");
    struct Case {
        UnixTime time;
        bool is, atLeast, atMost;
    };
    for (const auto& [time, is, atLeast, atMost] : {
             Case{at(2024, 3, 30, 23, 59, 59), false, false, true},
             {at(2024, 3, 31, 0), true, true, true}, // the clocks go forward: 23 hours
             {at(2024, 3, 31, 23, 59, 59), true, true, true},
             {at(2024, 4, 1, 0), false, true, false},
         }) {
        auto item = photo("a.jpg");
        item.fileDate = time;
        EXPECT_EQ(matches({Field::date, Op::is, "2024-03-31"}, item), is) << time;
        EXPECT_EQ(matches({Field::date, Op::isNot, "2024-03-31"}, item), !is) << time;
        EXPECT_EQ(matches({Field::date, Op::atLeast, "2024-03-31"}, item), atLeast) << time;
        EXPECT_EQ(matches({Field::date, Op::atMost, "2024-03-31"}, item), atMost) << time;
        item.captureDate = at(2020, 1, 1, 12);
        EXPECT_TRUE(matches({Field::date, Op::is, "2020-01-01"}, item)) << "not the file's date";
    }
}

TEST(NearPlace, isReadFromWhatItWritesAndFromWhatPeopleWrite)
{
    const NearPlace place{10, 48.137, -11.575};
    EXPECT_EQ(text(place), "10 km of 48.137, -11.575");
    for (const auto& written : {text(place), std::string("10;48.137;-11.575"),
             std::string(" 10km of 48.137,-11.575"), std::string("+10 KM of 48.137° N, 11.575°W"),
             std::string("10 48.137 n 11.575 W"), std::string("10 km of N 48.137, W 11.575"),
             std::string("within 10 kilometres of N48.137° W11.575"),
             std::string("10kilometers\tof 48.137\nW 11.575"),
             std::string(R"({"kilometres":10,"latitude":48.137,"longitude":-11.575})"),
             std::string(R"({"radius":10,"lat":48.137,"lng":-11.575})")})
        EXPECT_EQ(parseNearPlace(written), place) << written;
    for (const char* none : {"", "10", "10 km of Berlin", "1 2 3 4", "-1 2 3", "1 91 3", "1 2 181", "nan 2 3",
             "10 km of 48W, 11N", "10 km of -48 S, 11", "10 S 48 11 W N", "10 km of N 48 S, 11", "10n 48 11",
             "{", "{}", R"({"km":"10","lat":1,"lon":2})"})
        EXPECT_FALSE(parseNearPlace(none)) << none;
}

TEST(NearPlace, theBoxNeverRejectsWhatIsNearEnough)
{
    constexpr double degreesPerKilometre = 180 / (3.14159265358979323846 * 6371);
    auto item = photo("a.jpg");
    item.latitude = 10 * degreesPerKilometre;
    item.longitude = 0.0;
    EXPECT_TRUE(matches({Field::location, Op::near, "10 km of 0, 0"}, item));
    EXPECT_FALSE(matches({Field::location, Op::near, "9.9 km of 0, 0"}, item));
    for (const double all : {20'015.1, 40'000.0, 1e300}) // half the earth's way round and more
        EXPECT_TRUE(NearTest({all, 90, 0}).holds(-90, 120)) << all;
    EXPECT_TRUE(NearTest({0, 90, 10}).holds(90, 10));
    const double antipode = distanceInKilometres(
        -41.758210088007814, -60.395947873032284, 41.7582082420158, 119.60405091132395);
    EXPECT_TRUE(NearTest({antipode, -41.758210088007814, -60.395947873032284})
                    .holds(41.7582082420158, 119.60405091132395));
    std::mt19937 random(5);
    const auto between
        = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); };
    int near = 0;
    for (int i = 0; i < 20'000; ++i) {
        const NearPlace place{between(0, 4000), between(-90, 90), between(-180, 180)};
        const double latitude = std::clamp(place.latitude + between(-40, 40), -90.0, 90.0);
        const double longitude = between(-180, 180);
        const bool isNear
            = distanceInKilometres(place.latitude, place.longitude, latitude, longitude) <= place.kilometres;
        ASSERT_EQ(NearTest(place).holds(latitude, longitude), isNear) << text(place);
        near += isNear ? 1 : 0;
    }
    EXPECT_GT(near, 500);
}

} // namespace korvo
