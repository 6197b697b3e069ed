#include "platform/AppFolders.h"
#include "platform/FileDefaults.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(AppFolders, followTheEnvironmentFromOurOwnVariableToTheHome)
{
    struct Case {
        std::optional<std::string> own;
        std::optional<std::string> xdg;
        std::string data;
        std::string config;
    };
    const Case cases[] = {
        {"/own", "/xdg", "/own", "/own"},
        {std::nullopt, "/xdg", "/xdg/korvo", "/xdg/korvo"},
        {"", "", "/home/ann/.local/share/korvo", "/home/ann/.config/korvo"},
        {std::nullopt, "relative", "/home/ann/.local/share/korvo", "/home/ann/.config/korvo"},
        {"here", std::nullopt, std::filesystem::current_path() / "here",
            std::filesystem::current_path() / "here"},
    };
    const ScopedVariable home("HOME", "/home/ann");
    for (const auto& [own, xdg, data, config] : cases) {
        SCOPED_TRACE(own.value_or("-") + " " + xdg.value_or("-"));
        const ScopedVariable ownData("KORVO_DATA", own);
        const ScopedVariable ownConfig("KORVO_CONFIG", own);
        const ScopedVariable xdgData("XDG_DATA_HOME", xdg);
        const ScopedVariable xdgConfig("XDG_CONFIG_HOME", xdg);
        EXPECT_EQ(applicationDataFolder(), data);
        EXPECT_EQ(userDefaultsFolder(), config);
    }
}

TEST(AppFolders, findTheHomeWithoutTheEnvironment)
{
    const ScopedVariable home("HOME", std::nullopt);
    const ScopedVariable own("KORVO_DATA", std::nullopt);
    const ScopedVariable xdg("XDG_DATA_HOME", std::nullopt);
    EXPECT_TRUE(applicationDataFolder().is_absolute());
}

TEST(FileDefaults, whatCannotBeReadIsNoValueAndWhatAKilledProgramLeftGoes)
{
    const TemporaryFolder folder;
    const auto left = folder.write("korvo_a.c0ffee.part", "half");
    FileDefaults defaults(folder.path());
    EXPECT_FALSE(std::filesystem::exists(left));
    defaults.set("korvo_a", "x");
    std::filesystem::create_directory(folder / "korvo_b");
    EXPECT_EQ(defaults.get("korvo_a"), "x");
    for (const auto* const key : {"korvo_b", "korvo_c"})
        EXPECT_FALSE(defaults.get(key)) << key;
}

} // namespace korvo
