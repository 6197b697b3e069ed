#include "base/Record.h"
#include "base/Enum.h"

#include <gtest/gtest.h>
#include <string>
#include <unordered_set>
#include <vector>

namespace korvo {

namespace {

// A record that holds records of its own kind, as a local layer holds edits.
struct Tree {
    std::string name;
    double weight = 0;
    std::optional<std::vector<Tree>> branches;
};

KORVO_RECORD(Tree, name, weight, branches)

enum class Fruit { apple, pear, plum };

KORVO_ENUM(Fruit, apple, pear, plum)

} // namespace

TEST(Record, equalityAndHashGoThroughAllFieldsAndTheirRecords)
{
    const Tree tree{"oak", 1, std::vector<Tree>{{"twig", 0, {}}}};
    const std::vector<Tree> others = {
        {"ash", 1, tree.branches},
        {"oak", 2, tree.branches},
        {"oak", 1, {}},
        {"oak", 1, std::vector<Tree>{}},
        {"oak", 1, std::vector<Tree>{{"twig", 0, std::vector<Tree>{}}}},
    };
    std::unordered_set<Tree> seen{tree};
    EXPECT_EQ(seen.count(Tree(tree)), 1U);
    for (const auto& other : others) {
        EXPECT_NE(tree, other);
        EXPECT_NE(std::hash<Tree>()(tree), std::hash<Tree>()(other));
        EXPECT_TRUE(seen.insert(other).second);
    }
    EXPECT_EQ(std::hash<Tree>()({"oak", 0.0, {}}), std::hash<Tree>()({"oak", -0.0, {}}));
}

TEST(Enum, casesAreFoundByTheirNames)
{
    EXPECT_EQ(casesOf<Fruit>.size(), 3U);
    EXPECT_EQ(nameOf(Fruit::plum), "plum");
    EXPECT_EQ(caseNamed<Fruit>("pear"), Fruit::pear);
    EXPECT_EQ(caseNamed<Fruit>("Pear"), std::nullopt);
    EXPECT_EQ(caseNamed<Fruit>(""), std::nullopt);
}

} // namespace korvo
