#include "tests/app/desktop/TestWindow.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace korvo {

TEST(Commands, everyCommandStandsInTheTableAndNoKeyStandsThereTwice)
{
    std::set<Command> named;
    std::map<std::string, std::string> textOfKey;
    for (const auto& info : commandTable()) {
        if (info.id == Command::count)
            continue;
        if (info.text) {
            EXPECT_TRUE(named.insert(info.id).second) << info.text;
        }
        for (const auto& key : QString(info.keys).split(' ', Qt::SkipEmptyParts)) {
            EXPECT_FALSE(QKeySequence(key).isEmpty()) << key.toStdString();
            const auto [other, isNew] = textOfKey.emplace(key.toStdString(), info.text ? info.text : "");
            EXPECT_TRUE(isNew) << key.toStdString() << " stands for " << other->second << " too";
        }
    }
    EXPECT_EQ(named.size(), static_cast<std::size_t>(Command::count));
}

TEST(Commands, shiftAndAMarkingKeyAskForTheNextPhoto)
{
    TestWindow t(3);
    std::vector<bool> asked;
    auto& commands = t.window->commands();
    commands.handle(Command::pick, [&] { asked.push_back(commands.advance()); });
    t.store().select({1});
    t.press(Qt::Key_P);
    t.press(Qt::Key_P, Qt::ShiftModifier);
    t.press(Qt::Key_P);
    EXPECT_EQ(asked, (std::vector{false, true, false}));
}

TEST(Commands, areDisabledWithoutWhatTheyNeed)
{
    TestWindow t(2);
    auto& commands = t.window->commands();
    commands.handle(Command::rotateLeft, [] {});
    commands.handle(Command::stack, [] {});
    const auto enabled = [&] {
        return std::pair(
            commands.action(Command::rotateLeft)->isEnabled(), commands.action(Command::stack)->isEnabled());
    };
    EXPECT_EQ(enabled(), std::pair(false, false));
    t.store().select({1});
    EXPECT_EQ(enabled(), std::pair(true, false));
    t.store().select({1, 2});
    EXPECT_EQ(enabled(), std::pair(true, true));
}

} // namespace korvo
