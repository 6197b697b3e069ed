#include "aperture/PlistJson.h"
#include "tests/support/PlistWriter.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

using Case = BinaryPlist::ParseError::Case;

/// What is read, as JSON.
std::string read(const std::string& bytes, std::optional<BinaryPlist> (*reader)(Bytes))
{
    try {
        const auto list = reader(Bytes(bytes));
        JsonWriter json;
        if (list)
            writeJson(json, list->root());
        return list ? json.take() : "nothing";
    } catch (const BinaryPlist::ParseError& error) {
        return error.which() == Case::malformed ? "malformed" : "notBinaryPlist";
    }
}

std::string parsed(const std::string& bytes)
{
    return read(bytes, [](Bytes list) { return std::optional(BinaryPlist::parse(list)); });
}

std::string unarchived(const std::string& bytes)
{
    return read(bytes, &BinaryPlist::unarchive);
}

using Draft = PlistDraft;

Draft uid(std::int64_t index)
{
    return Draft(Draft::Uid{index});
}

Draft list(std::vector<Draft> values)
{
    return Draft(std::move(values));
}

/// The archive of these objects whose root is object 1.
std::string archived(std::vector<Draft> objects)
{
    objects.insert(objects.begin(), Draft("$null"));
    return unarchived(plistBytes(
        plistDict({{"$top", plistDict({{"root", uid(1)}})}, {"$objects", list(std::move(objects))}})));
}

std::string only(std::string object)
{
    return parsed(RawPlist{{std::move(object)}}.bytes());
}

std::string operator""_b(const char* bytes, std::size_t size)
{
    return {bytes, size};
}

/// The list with the 8 bytes that end `fromEnd` bytes before its end replaced: the fields of the trailer.
std::string withField(std::string list, std::size_t fromEnd, std::uint64_t value)
{
    return list.replace(list.size() - fromEnd - 8, 8, bigEndianBytes(value, 8));
}

} // namespace

TEST(BinaryPlist, decodesEachKindOfObject)
{
    const struct {
        std::string object, value;
    } cases[] = {{"\x00"_b, "null"}, {"\x0F", "null"}, {"\x08", "false"}, {"\x09", "true"},
        {"\x10\xFF", "255"}, {"\x11\xFF\xFE", "65534"}, {"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE", "-2"},
        {"\x14\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\7"_b, "7"},
        {"\x14\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\7"_b, "malformed"},
        {"\x14\0\0\0\0\0\0\0\0\x80\0\0\0\0\0\0\7"_b, "malformed"}, {"\x22\x3F\xC0\0\0"_b, "1.5"},
        {"\x23\x40\x09\x21\xFB\x54\x44\x2D\x18", "3.141592653589793"},
        {"\x30\x41\xC0\0\0\0\0\0\0"_b, R"({"date":536870912})"}, {"\x43\0\1\xFF"_b, R"({"data":"AAH/"})"},
        {"\x53one", R"("one")"},
        {"\x54"
         "a\xC3\xA4z",
            "\"a\u00E4z\""},
        {"\x54"
         "a\xE2\x82z",
            "\"a\uFFFDz\""},
        {"\x63\0a\xD8\x3D\xDE\0"_b, "\"a\U0001F600\""}, {"\x62\xD8\x3D\0a"_b, "\"\uFFFDa\""},
        {"\x81\1\2", R"({"uid":258})"}, {"\x87\x80\0\0\0\0\0\0\0"_b, "malformed"},
        {"\x5F\x10\x03one", R"("one")"}, {"\x5F\x33one", "malformed"}, {"\x70", "malformed"},
        {"\x90", "malformed"}, {"\xB0", "malformed"}, {"\xE0", "malformed"}, {"\xF0", "malformed"}};
    for (const auto& [object, value] : cases)
        EXPECT_EQ(only(object), value);
}

TEST(BinaryPlist, keepsOrderDuplicatesAndKeysOfAnyKind)
{
    const std::vector<std::string> leaves{"\x51"
                                          "a",
        "\x10\1", "\x10\2"};
    const auto list = [&](std::string container) {
        auto objects = leaves;
        objects.push_back(std::move(container));
        return parsed(RawPlist{objects, 3}.bytes());
    };
    EXPECT_EQ(list("\xA3\2\1\2"), "[2,1,2]");
    EXPECT_EQ(list("\xC3\2\1\2"), "[2,1,2]"); // a set
    EXPECT_EQ(list("\xD3\0\0\1\2\1\0"_b), R"({"pairs":[["a",2],["a",1],[1,"a"]]})");
    EXPECT_EQ(list("\xA1\4"), "malformed"); // no such object
    EXPECT_EQ(list("\xA1\3"), "malformed"); // itself
}

TEST(BinaryPlist, tellsWhatIsNoListFromWhatIsDamaged)
{
    const auto sound = RawPlist{{"\x09"}}.bytes();
    ASSERT_EQ(sound.size(), 42U);
    EXPECT_EQ(parsed(sound), "true");
    EXPECT_EQ(parsed(sound.substr(0, 40)), "notBinaryPlist");
    EXPECT_EQ(parsed("bplist01" + sound.substr(8)), "notBinaryPlist");
    EXPECT_EQ(parsed("<?xml version=\"1.0\"?><plist version=\"1.0\"><true/></plist>"), "notBinaryPlist");
    constexpr auto topBit = std::uint64_t(1) << 63;
    for (const std::size_t field :
        {0U, 8U, 16U}) { // the table's offset, the top object, the number of objects
        EXPECT_EQ(parsed(withField(sound, field, topBit)), "malformed") << field;
        EXPECT_EQ(parsed(withField(sound, field, topBit - 1)), "malformed") << field;
    }
    // The smallest list of all keeps its table in the unused bytes of the trailer.
    const auto smallest = "bplist00\x09\x08\0\0\0\0\0\1\1"_b + bigEndianBytes(1, 8) + bigEndianBytes(0, 8)
        + bigEndianBytes(9, 8);
    ASSERT_EQ(smallest.size(), 41U);
    EXPECT_EQ(parsed(smallest), "true");
}

TEST(BinaryPlist, readsOffsetsAndReferencesOfAnyWidth)
{
    for (const unsigned width : {1U, 2U, 3U, 8U, 9U, 255U}) {
        SCOPED_TRACE(width);
        const auto byte = static_cast<std::uint8_t>(width);
        const auto reference = bigEndianBytes(1, width);
        RawPlist list{{"\xA1" + reference, "\x51z"}, 0, byte, byte};
        EXPECT_EQ(parsed(list.bytes()), R"(["z"])");
        if (width < 8)
            continue;
        list.objects[0][width - 7] = '\x80'; // the top bit of 64
        EXPECT_EQ(parsed(list.bytes()), "malformed");
    }
    // Without bytes for offsets every object is the header, taken for a string of two units.
    auto headless = RawPlist{{"\x09"}}.bytes();
    headless[headless.size() - 26] = '\0';
    EXPECT_EQ(parsed(withField(headless, 16, std::uint64_t(1) << 62)), "\"\u706C\u6973\"");
    // Without bytes for references each means object 0.
    EXPECT_EQ(parsed(RawPlist{{"\x51z", "\xA2"}, 1, 1, 0}.bytes()), R"(["z","z"])");
}

TEST(BinaryPlist, boundsWhatFewBytesClaim)
{
    const std::string million = "\x12" + bigEndianBytes(1'000'000'000, 4);
    for (const char* const kind : {"\x4F", "\x5F", "\x6F", "\xAF", "\xCF", "\xDF"}) {
        EXPECT_EQ(only(kind + million), "malformed");
        EXPECT_EQ(parsed(RawPlist{{"\x09", kind + million}, 1, 1, 0}.bytes()), "malformed");
        EXPECT_EQ(only(kind + ("\x13" + bigEndianBytes(~std::uint64_t(0) >> 1, 8))), "malformed");
    }
    RawPlist doubling{{"\x51z"}}; // each object holds the one before twice
    for (char i = 0; i < 62; ++i)
        doubling.objects.push_back(std::string("\xA2") + i + i);
    doubling.top = 62;
    EXPECT_EQ(parsed(doubling.bytes()), "malformed");
    RawPlist circle{{"\xA1\1", "\xD1\0\0"_b}};
    EXPECT_EQ(parsed(circle.bytes()), "malformed");
    RawPlist overlapping{.offsetSize = 2, .refSize = 1}; // long arrays that all use the same bytes
    overlapping.objects.assign(200, "\xAF");
    overlapping.objects.push_back(std::string(4000, '\x10'));
    EXPECT_EQ(parsed(overlapping.bytes()), "malformed");
}

TEST(BinaryPlist, followsNestingToItsLimit)
{
    const auto nested = [](int depth) {
        RawPlist list{.offsetSize = 4, .refSize = 4};
        for (int i = 1; i < depth; ++i)
            list.objects.push_back("\xA1" + bigEndianBytes(static_cast<std::uint64_t>(i), 4));
        list.objects.emplace_back("\xA0");
        return parsed(list.bytes());
    };
    EXPECT_EQ(nested(BinaryPlist::maxDepth).size(), 2U * BinaryPlist::maxDepth);
    EXPECT_EQ(nested(BinaryPlist::maxDepth + 1), "malformed");
    EXPECT_EQ(nested(1'000'000), "malformed");
}

TEST(KeyedArchive, resolvesWhatArchiversWrite)
{
    const auto root = plistDict({{"inputKeys", plistDict({{"inputEV", Draft(0.5)}, {"isOn", Draft(true)}})},
        {"points", list({Draft("{0, 1}"), Draft(std::int64_t(2))})}});
    EXPECT_EQ(unarchived(archiveBytes(root)), parsed(plistBytes(root)));
    EXPECT_EQ(unarchived(plistBytes(root)), "nothing");
}

TEST(KeyedArchive, resolvesEachShapeOfObject)
{
    const auto named = [](const char* name) { return plistDict({{"$classname", Draft(name)}}); };
    EXPECT_EQ(archived({Draft("$null")}), "nothing");
    EXPECT_EQ(archived({Draft()}), "nothing");
    EXPECT_EQ(archived({uid(2), uid(3), Draft(7.5)}), "7.5"); // references to references
    EXPECT_EQ(archived({plistDict({{"NS.string", uid(2)}}), Draft("text")}), R"("text")");
    EXPECT_EQ(archived({plistDict({{"NS.data", Draft(Draft::Data{1, 2})}})}), R"({"data":"AQI="})");
    EXPECT_EQ(archived({plistDict({{"NS.data", uid(2)}}), Draft("text")}), R"({"NS.data":"text"})");
    EXPECT_EQ(archived({plistDict({{"NS.objects", list({uid(0), uid(2)})}}), Draft(true)}), "[true]");
    EXPECT_EQ(archived({plistDict({{"NS.keys", list({uid(2), uid(2), uid(3)})},
                            {"NS.objects", list({uid(3), uid(4), uid(4)})}}),
                  Draft("key"), Draft(std::int64_t(1)), Draft(std::int64_t(2))}),
        R"({"key":2})");
    EXPECT_EQ(archived({plistDict({{"$class", uid(2)}, {"point", uid(3)}, {"none", uid(0)}}),
                  named("NSValue"), Draft("{1, 2}")}),
        R"({"__class__":"NSValue","point":"{1, 2}"})");
}

TEST(KeyedArchive, anArchiveThatLeadsNowhereIsNothing)
{
    const auto objects = list({Draft("$null"), Draft("root")});
    EXPECT_EQ(unarchived(plistBytes(plistDict({}))), "nothing");
    EXPECT_EQ(unarchived(plistBytes(plistDict({{"$objects", objects}, {"$top", plistDict({})}}))), "nothing");
    EXPECT_EQ(unarchived(plistBytes(
                  plistDict({{"$objects", objects}, {"$top", plistDict({{"root", Draft("1")}})}}))),
        "nothing");
    EXPECT_EQ(
        unarchived(plistBytes(plistDict({{"$objects", objects}, {"$top", plistDict({{"root", uid(9)}})}}))),
        "nothing");
    EXPECT_EQ(unarchived(plistBytes(plistDict(
                  {{"$top", plistDict({{"root", uid(1)}})}, {"$objects", list({})}, {"$objects", objects}}))),
        R"("root")"); // the later entry counts
}

TEST(KeyedArchive, endsAtTheDepthLimitAndRefusesExplosions)
{
    const auto depth = [](const std::string& text) { return std::count(text.begin(), text.end(), '['); };
    std::vector<Draft> nested, chain;
    for (std::int64_t i = 2; i < 100; ++i) {
        nested.push_back(plistDict({{"NS.objects", list({uid(i)})}}));
        chain.push_back(uid(i));
    }
    EXPECT_LE(depth(archived(nested)), 64);
    EXPECT_GT(depth(archived(nested)), 60);
    chain.emplace_back("the end");
    EXPECT_EQ(archived(chain), "nothing");
    EXPECT_EQ(archived({chain.end() - 40, chain.end()}), "nothing"); // these UIDs are out of range
    EXPECT_EQ(depth(archived({plistDict({{"NS.objects", list({uid(1)})}})})), 63); // an array in itself
    EXPECT_EQ(archived({plistDict({{"NS.objects", list({uid(1), uid(1)})}})}), "malformed");
    // Many references to one object, or to the class of one, that has many members.
    const auto many = [](const char* first, Draft value) {
        Draft::Dict members(300, {Draft("k"), Draft()});
        members.push_back({Draft(first), std::move(value)});
        return Draft(std::move(members));
    };
    const auto references = plistDict({{"NS.objects", list(std::vector(300, uid(2)))}});
    EXPECT_EQ(archived({references, many("NS.objects", list({}))}), "malformed");
    EXPECT_EQ(
        archived({references, plistDict({{"$class", uid(3)}}), many("$classname", Draft("A"))}), "malformed");
}

} // namespace korvo
