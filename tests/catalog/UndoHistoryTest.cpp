#include "catalog/store/UndoHistory.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

UndoStep step(const std::string& title, std::size_t bytes = 1)
{
    return {title, Changeset(std::vector<std::uint8_t>(bytes)), {}};
}

/// The titles that undo takes back, the newest first.
std::vector<std::string> undoneOf(UndoHistory history)
{
    std::vector<std::string> titles;
    for (; history.toUndo(); history.undone())
        titles.push_back(history.toUndo()->title);
    return titles;
}

using Titles = std::vector<std::string>;

} // namespace

TEST(UndoHistory, aNewStepEndsRedoAndOneFromBehindDoesNot)
{
    UndoHistory history;
    EXPECT_FALSE(history.toUndo());
    for (const char* title : {"a", "b", "c"})
        history.add(step(title));
    const auto since = history.newest();
    history.add(step("during"));
    history.add(step("undone"));
    history.undone();
    history.addBehind(since, step("import"));
    EXPECT_EQ(undoneOf(history), (Titles{"during", "import", "c", "b", "a"}));
    ASSERT_TRUE(history.toRedo());
    EXPECT_EQ(history.toRedo()->title, "undone");
    history.add(step("new"));
    EXPECT_FALSE(history.toRedo());
    EXPECT_EQ(undoneOf(history), (Titles{"new", "during", "import", "c", "b", "a"}));
}

TEST(UndoHistory, forgetsTheOldestBeyondItsBoundsButKeepsTheFewest)
{
    UndoHistory many;
    for (std::size_t i = 0; i < UndoHistory::stepsKept + 20; ++i)
        many.add(step(std::to_string(i)));
    EXPECT_EQ(undoneOf(many).size(), UndoHistory::stepsKept);
    EXPECT_EQ(undoneOf(many).back(), "20");

    UndoHistory large;
    constexpr std::size_t each = UndoHistory::bytesKept / 220;
    for (std::size_t i = 0; i < 300; ++i)
        large.add(step(std::to_string(i), i < 40 ? 1 : each));
    EXPECT_EQ(undoneOf(large).size(), 220U) << "as many as the bytes allow";
    large.add(step("huge", UndoHistory::bytesKept));
    EXPECT_EQ(undoneOf(large).size(), UndoHistory::fewestSteps);
    EXPECT_EQ(undoneOf(large).front(), "huge");
}

} // namespace korvo
