#include "aperture/BinaryPlist.h"
#include "tests/aperture/Described.h"
#include "tests/support/PlistWriter.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

using Value = BinaryPlist::Value;

Value uid(std::int64_t index)
{
    return Value(Value::Uid{index});
}

Value list(std::vector<Value> values)
{
    return Value(std::move(values));
}

std::string unarchived(const std::string& bytes)
{
    try {
        const auto root = BinaryPlist::unarchive(Bytes(bytes));
        return root ? described(*root) : "nothing";
    } catch (const BinaryPlist::ParseError&) {
        return "malformed";
    }
}

/// The archive of these objects whose root is object 1.
std::string archived(std::vector<Value> objects)
{
    objects.insert(objects.begin(), Value("$null"));
    return unarchived(plistBytes(
        plistDict({{"$top", plistDict({{"root", uid(1)}})}, {"$objects", list(std::move(objects))}})));
}

} // namespace

TEST(KeyedArchive, resolvesWhatArchiversWrite)
{
    const auto root = plistDict({{"inputKeys", plistDict({{"inputEV", Value(0.5)}, {"isOn", Value(true)}})},
        {"points", list({Value("{0, 1}"), Value(std::int64_t(2))})}});
    EXPECT_EQ(unarchived(archiveBytes(root)), described(root));
    EXPECT_EQ(unarchived(plistBytes(root)), "nothing");
}

TEST(KeyedArchive, resolvesEachShapeOfObject)
{
    const auto named = [](const char* name) { return plistDict({{"$classname", Value(name)}}); };
    EXPECT_EQ(archived({Value("$null")}), "nothing");
    EXPECT_EQ(archived({Value()}), "nothing");
    EXPECT_EQ(archived({uid(2), uid(3), Value(7.5)}), "7.5"); // references to references
    EXPECT_EQ(archived({plistDict({{"NS.string", uid(2)}}), Value("text")}), "'text'");
    EXPECT_EQ(archived({plistDict({{"NS.data", Value(Value::Data{1, 2})}})}), "data 0102");
    EXPECT_EQ(archived({plistDict({{"NS.data", uid(2)}}), Value("text")}), "{'NS.data': 'text'}");
    EXPECT_EQ(archived({plistDict({{"NS.objects", list({uid(0), uid(2)})}}), Value(true)}), "[true]");
    EXPECT_EQ(archived({plistDict({{"NS.keys", list({uid(2), uid(2), uid(3)})},
                            {"NS.objects", list({uid(3), uid(4), uid(4)})}}),
                  Value("key"), Value(std::int64_t(1)), Value(std::int64_t(2))}),
        "{'key': 2}");
    EXPECT_EQ(archived({plistDict({{"$class", uid(2)}, {"point", uid(3)}, {"none", uid(0)}}),
                  named("NSValue"), Value("{1, 2}")}),
        "{'__class__': 'NSValue', 'point': '{1, 2}'}");
}

TEST(KeyedArchive, anArchiveThatLeadsNowhereIsNothing)
{
    const auto objects = list({Value("$null"), Value("root")});
    EXPECT_EQ(unarchived(plistBytes(plistDict({}))), "nothing");
    EXPECT_EQ(unarchived(plistBytes(plistDict({{"$objects", objects}, {"$top", plistDict({})}}))), "nothing");
    EXPECT_EQ(unarchived(plistBytes(
                  plistDict({{"$objects", objects}, {"$top", plistDict({{"root", Value("1")}})}}))),
        "nothing");
    EXPECT_EQ(
        unarchived(plistBytes(plistDict({{"$objects", objects}, {"$top", plistDict({{"root", uid(9)}})}}))),
        "nothing");
    EXPECT_EQ(unarchived(plistBytes(plistDict(
                  {{"$top", plistDict({{"root", uid(1)}})}, {"$objects", list({})}, {"$objects", objects}}))),
        "'root'"); // the later entry counts
}

TEST(KeyedArchive, endsAtTheDepthLimitAndRefusesExplosions)
{
    const auto depth = [](const std::string& text) { return std::count(text.begin(), text.end(), '['); };
    std::vector<Value> nested, chain;
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
    const auto many = [](const char* first, Value value) {
        Value::Dict members(300, {Value("k"), Value()});
        members.push_back({Value(first), std::move(value)});
        return Value(std::move(members));
    };
    const auto references = plistDict({{"NS.objects", list(std::vector(300, uid(2)))}});
    EXPECT_EQ(archived({references, many("NS.objects", list({}))}), "malformed");
    EXPECT_EQ(
        archived({references, plistDict({{"$class", uid(3)}}), many("$classname", Value("A"))}), "malformed");
}

} // namespace korvo
