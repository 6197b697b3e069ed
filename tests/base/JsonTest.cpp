#include "base/Json.h"

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <thread>

namespace korvo {

namespace {

enum class Shape { round, square };

KORVO_ENUM(Shape, round, square)

// Text that knows what it may be, as an identifier does.
struct Initial {
    char letter = 'A';

    static std::optional<Initial> parse(std::string_view text)
    {
        return text.size() == 1 ? std::optional(Initial{text[0]}) : std::nullopt;
    }
    std::string text() const { return std::string(1, letter); }
    bool operator==(const Initial&) const = default;
};

struct Plate {
    bool hot = false;
    std::int64_t count = 0;
    std::optional<int> slot;
    std::optional<double> size;
    std::string name;
    Shape shape = Shape::round;
    std::optional<Initial> initial;
    std::optional<std::vector<Plate>> plates;
};

KORVO_RECORD(Plate, hot, count, slot, size, name, shape, initial, plates)

template <typename T>
JsonError errorOf(std::string_view text)
{
    try {
        fromJson<T>(text);
    } catch (const JsonError& error) {
        return error;
    }
    throw std::runtime_error("this was read: " + std::string(text));
}

std::string nested(std::size_t layers, std::string_view inner)
{
    return std::string(layers, '[') + std::string(inner) + std::string(layers, ']');
}

std::string nestedObjects(std::size_t layers, std::string_view inner)
{
    std::string text;
    for (std::size_t i = 0; i < layers; ++i)
        text += "{\"]\\\"[\":";
    return text + std::string(inner) + std::string(layers, '}');
}

} // namespace

using Case = JsonError::Case;

TEST(Json, writesFieldsInOrderAndLeavesOutWhatIsNotSet)
{
    Plate plate{true, -3, {}, {}, "a\"\\\n\x01 ö\xFF", Shape::square, {}, {}};
    EXPECT_EQ(toJson(plate),
        R"({"hot":true,"count":-3,"name":"a\"\\\n\u0001 ö)"
        "\uFFFD"
        R"(","shape":"square"})");
    plate.slot = 2;
    plate.size = 0.1;
    plate.name = "";
    plate.initial = Initial{'Q'};
    plate.plates = std::vector<Plate>(2);
    const auto text = toJson(plate);
    EXPECT_EQ(text,
        R"({"hot":true,"count":-3,"slot":2,"size":0.1,"name":"","shape":"square","initial":"Q","plates":[)"
        R"({"hot":false,"count":0,"name":"","shape":"round"},)"
        R"({"hot":false,"count":0,"name":"","shape":"round"}]})");
    EXPECT_EQ(fromJson<Plate>(text), plate);
}

TEST(Json, readsMembersInAnyOrderAndTheLastOfTwoAlike)
{
    const auto plate = fromJson<Plate>(R"( { "unknown": [{"hot":1}], "shape":"square", "name":"\u00e9",
        "count": "no number", "size":1, "count":90.0, "slot":null, "size":null, "hot":true } )");
    EXPECT_EQ(plate, (Plate{true, 90, {}, {}, "é", Shape::square, {}, {}}));
}

TEST(Json, refusesWhatIsNotTheRecord)
{
    const std::string good = R"("hot":true,"count":1,"name":"","shape":"round")";
    ASSERT_NO_THROW(fromJson<Plate>("{" + good + "}"));
    struct Row {
        std::string text;
        Case which;
        std::string_view subject;
    };
    for (const auto& [text, which, subject] : std::vector<Row>{
             {R"({"hot":true,"name":"","shape":"round"})", Case::missingKey, "“count” "},
             {"{" + good + R"(,"hot":null})", Case::wrongKind, "“hot” "},
             {"{" + good + R"(,"hot":1})", Case::wrongKind, "“hot” "},
             {"{" + good + R"(,"count":"1"})", Case::wrongKind, "“count” "},
             {"{" + good + R"(,"count":true})", Case::wrongKind, "“count” "},
             {"{" + good + R"(,"size":"1"})", Case::wrongKind, "“size” "},
             {"{" + good + R"(,"name":1})", Case::wrongKind, "“name” "},
             {"{" + good + R"(,"plates":{}})", Case::wrongKind, "“plates” "},
             {"{" + good + R"(,"plates":[{)" + good + "},[]]}", Case::wrongKind, "“plates[1]” "},
             {"{" + good + R"(,"plates":[{}]})", Case::missingKey, "“plates[0].hot” "},
             {"{" + good + R"(,"shape":"Round"})", Case::wrongText, "“shape” "},
             {"{" + good + R"(,"initial":"QQ"})", Case::wrongText, "“initial” "},
             {"{" + good + R"(,"count":90.5})", Case::wrongNumber, "“count” "},
             {"{" + good + R"(,"slot":2147483648})", Case::wrongNumber, "“slot” "},
             {"{" + good + R"(,"count":9223372036854775808})", Case::wrongNumber, "“count” "},
             {"{" + good + R"(,"count":-1e300})", Case::wrongNumber, "“count” "},
             {"[]", Case::wrongKind, "The JSON text "},
             {"null", Case::wrongKind, "The JSON text "},
         }) {
        const auto error = errorOf<Plate>(text);
        EXPECT_EQ(error.which(), which) << text;
        EXPECT_TRUE(std::string_view(error.what()).starts_with(subject)) << error.what();
    }
}

TEST(Json, refusesWhatIsNotJson)
{
    for (const std::string text : {"", " ", "1e999", "-1e999", "NaN", "Infinity", "+1", "01", ".5", "1 2",
             "1,", "[1,]", "[1", "'a'", "\"\\ud800\"", "\"\n\"", "// a\n1",
             "\xEF\xBB\xBF"
             "1"})
        EXPECT_EQ(errorOf<double>(text).which(), Case::syntax) << text;
    EXPECT_EQ(errorOf<double>(std::string_view("1\0", 2)).which(), Case::syntax);
    EXPECT_EQ(errorOf<std::string>("\"\xC3\"").which(), Case::notUtf8);
}

TEST(Json, allowsSixtyFourLayers)
{
    for (const std::string_view inner : {"", "1", "{}", "\"]]\""}) {
        const std::size_t extra = inner == "{}" ? 1 : 0;
        EXPECT_NO_THROW(JsonDocument(nested(64 - extra, inner))) << inner;
        EXPECT_THROW(JsonDocument(nested(65 - extra, inner)), JsonError) << inner;
    }
    for (const std::string_view inner : {"{}", "[]", "[1]"}) {
        EXPECT_NO_THROW(JsonDocument(nestedObjects(63, inner))) << inner;
        EXPECT_THROW(JsonDocument(nestedObjects(64, inner)), JsonError) << inner;
    }
    EXPECT_EQ(errorOf<double>(nested(100'000, "")).which(), Case::tooDeep);

    Plate plate; // each plate in a plate is two layers
    const auto wrap = [&] { plate.plates = std::vector{plate}; };
    for (int i = 0; i < 31; ++i)
        wrap();
    EXPECT_EQ(fromJson<Plate>(toJson(plate)), plate) << "63 layers";
    wrap();
    EXPECT_THROW(toJson(plate), JsonError) << "what could not be read again is not written";
}

TEST(Json, numbersComeBackBitForBit)
{
    for (const auto& [value, text] : {
             std::pair<double, std::string_view>{0, "0"},
             {-0.0, "-0.0"},
             {1, "1"},
             {-2.5, "-2.5"},
             {0.1, "0.1"},
             {100000, "100000"},
             {1e-7, "1e-07"},
             {9007199254740991, "9007199254740991"},
             {1e300, "1e+300"},
             {123456789012345683968.0, "1.2345678901234568e+20"},
             {5e-324, "5e-324"},
         })
        EXPECT_EQ(toJson(value), text);
    std::mt19937_64 random(7);
    for (int i = 0; i < 100'000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (std::isfinite(value)) {
            ASSERT_EQ(std::bit_cast<std::int64_t>(fromJson<double>(toJson(value))),
                std::bit_cast<std::int64_t>(value))
                << toJson(value);
        }
    }
    using Limits = std::numeric_limits<std::int64_t>;
    for (const auto value : {Limits::min(), Limits::max()})
        EXPECT_EQ(fromJson<std::int64_t>(toJson(value)), value);
    using Doubles = std::numeric_limits<double>;
    for (const auto value : {Doubles::infinity(), -Doubles::infinity(), Doubles::quiet_NaN()})
        EXPECT_THROW(toJson(value), JsonError);
}

TEST(Json, writerMindsCommasAndUnsetMembers)
{
    JsonWriter json;
    json.beginObject();
    json.member("id", std::size_t(7));
    json.member("place", std::optional<std::string>());
    json.key("rows");
    json.beginArray();
    for (int i = 0; i < 2; ++i) {
        json.beginArray();
        json.endArray();
        json.value("ends with {");
        json.null();
    }
    json.endArray();
    json.member("ok", true);
    json.endObject();
    EXPECT_EQ(json.take(), R"({"id":7,"rows":[[],"ends with {",null,[],"ends with {",null],"ok":true})");
    json.value(Shape::round);
    EXPECT_EQ(json.take(), R"("round")");
}

TEST(JsonDocument, showsTextOfUnknownShape)
{
    const JsonDocument document(R"({"a":[1,2.5,"x",null,false],"b":{},"a":18446744073709551615})");
    const auto root = document.root();
    std::string keys;
    for (const auto [key, value] : root.members())
        keys += key;
    EXPECT_EQ(keys, "aba");
    EXPECT_EQ(root.member("a").kind(), JsonValue::Kind::number);
    EXPECT_FALSE(root.member("c"));
    std::vector<JsonValue::Kind> kinds;
    for (const JsonValue element : (*root.members().begin()).value.elements())
        kinds.push_back(element.kind());
    using enum JsonValue::Kind;
    EXPECT_EQ(kinds, (std::vector{integer, number, text, null, boolean}));
}

TEST(JsonDocument, livesOnWhenOthersAreParsed)
{
    JsonDocument first(R"(["first"])");
    const JsonDocument second(R"(["second"])");
    std::thread([moved = std::move(first)] {
        EXPECT_EQ((*moved.root().elements().begin()).text(), "first");
    }).join();
    EXPECT_EQ(fromJson<double>("3"), 3);
    EXPECT_EQ((*second.root().elements().begin()).text(), "second");
}

} // namespace korvo
