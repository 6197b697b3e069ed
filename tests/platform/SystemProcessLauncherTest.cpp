#include "platform/linux/SystemProcessLauncher.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace korvo {

namespace {

using namespace std::chrono_literals;
using Command = std::vector<std::string>;

Command shell(const std::string& script)
{
    return {"/bin/sh", "-c", script};
}

ProcessOutput run(const Command& command, std::string_view input = {})
{
    return SystemProcessLauncher().run(command, input, {});
}

bool isRunning(const std::string& processID)
{
    return kill(std::stoi(processID), 0) == 0;
}

} // namespace

TEST(SystemProcessLauncher, passesArgumentsAsTheyAreAndReportsTheEnd)
{
    const Command values{"-a", "", "two words", "'\"$HOME`x`\\", "line\nbreak", "🌸", "\xff"};
    Command command{"/usr/bin/printf", "%s|"};
    command.insert(command.end(), values.begin(), values.end());
    EXPECT_EQ(run(command).out, "-a||two words|'\"$HOME`x`\\|line\nbreak|🌸|\xff|");
    EXPECT_EQ(run(shell("cat; echo no >&2; exit 7"), "in").out, "in");
    EXPECT_EQ(run(shell("echo no >&2; exit 7")).err, "no\n");
    EXPECT_EQ(run(shell("exit 7")).status, 7);
    EXPECT_EQ(run(shell("kill -9 $$")).status, 128 + SIGKILL);
}

TEST(SystemProcessLauncher, neverWaitsForAPipeThatWaitsForAnother)
{
    const std::string input(3'000'000, 'x');
    const auto output
        = run(shell("head -c 2000000 /dev/zero >&2; cat; head -c 1000000 /dev/zero >&2"), input);
    EXPECT_EQ(output.out.size(), input.size());
    EXPECT_EQ(output.err.size(), 3'000'000U);
    EXPECT_EQ(run(shell("exit 3"), input).status, 3) << "a program that does not read is no fault";
}

TEST(SystemProcessLauncher, saysWhyAProgramCannotBeStarted)
{
    const TemporaryFolder folder;
    for (const auto& [program, reason] :
        {std::pair<std::string, std::string>{folder / "none", "No such file or directory"},
            {folder.write("text", "x"), "Permission denied"}})
        try {
            run({program});
            ADD_FAILURE();
        } catch (const ProcessError& error) {
            EXPECT_EQ(error.which(), ProcessError::Case::launch);
            EXPECT_EQ(std::string(error.what()), program + " can't be started: " + reason);
        }
}

TEST(SystemProcessLauncher, endsAHangingProgramAndWhatItStarted)
{
    for (const std::string outputs : {"", "exec >&- 2>&-; "}) { // also one that says it has nothing to say
        const TemporaryFolder folder;
        const auto id = folder / "id";
        std::stop_source stop;
        const std::jthread stopper([&] {
            while (!readFile(id).ends_with('\n'))
                std::this_thread::sleep_for(5ms);
            stop.request_stop();
        });
        try {
            SystemProcessLauncher().run(
                shell(outputs + "sleep 1000 & echo $! > '" + id.string() + "'; wait"), {}, stop.get_token());
            ADD_FAILURE() << outputs;
        } catch (const ProcessError& error) {
            EXPECT_EQ(error.which(), ProcessError::Case::stopped);
        }
        for (int looks = 0; looks < 400 && isRunning(readFile(id)); ++looks)
            std::this_thread::sleep_for(5ms);
        EXPECT_FALSE(isRunning(readFile(id)));
    }
}

TEST(SystemProcessLauncher, worksWhereTheEndsOfChildrenAreIgnored)
{
    auto* const before = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(run(shell("echo x")).out, "x\n");
    std::signal(SIGCHLD, before);
}

TEST(SystemProcessLauncher, talksToAProgramUntilItEnds)
{
    SystemProcessLauncher launcher;
    const auto process
        = launcher.start(shell("while read line && test $line != end; do echo got $line; done"));
    const auto isLine = [](const ProcessOutput& output) { return output.out.ends_with('\n'); };
    EXPECT_EQ(process->ask("one\n", isLine, {}).out, "got one\n");
    EXPECT_EQ(process->ask("two\n", isLine, {}).out, "got two\n");
    EXPECT_THROW(process->ask("end\n", isLine, {}), ProcessError);
}

} // namespace korvo
