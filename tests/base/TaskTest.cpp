#include "base/Task.h"
#include "base/StopCheck.h"
#include "tests/support/ManualMainThread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

namespace korvo {

TEST(Task, deliversItsResultOnTheMainThread)
{
    ManualMainThread main;
    bool onMain = false;
    bool offMain = false;
    const Task task = runInBackground(main, [&](const Task::Context& context) {
        offMain = !main.isCurrent();
        context.deliver([&] { onMain = main.isCurrent(); });
    });
    EXPECT_TRUE(main.runUntil([&] { return onMain; }));
    EXPECT_TRUE(offMain);
}

TEST(Task, cancellingStopsTheWorkAndWithholdsWhatItPosted)
{
    ManualMainThread main;
    int delivered = 0;
    std::atomic<bool> posted = false;
    std::atomic<bool> stopped = false;
    Task task = runInBackground(main, [&](const Task::Context& context) {
        context.deliver([&] { ++delivered; });
        posted = true;
        while (!context.stopRequested())
            std::this_thread::yield();
        stopped = true;
    });
    while (!posted)
        std::this_thread::yield();
    task.cancel();
    EXPECT_TRUE(stopped);
    main.runPending();
    EXPECT_EQ(delivered, 0);
}

TEST(LeftTasks, nobodyWaitsForWhatTakesLongToStop)
{
    ManualMainThread main;
    std::atomic<bool> goOn = false, sawStop = false;
    int delivered = 0;
    {
        LeftTasks left;
        left.take(runInBackground(main, [&](const Task::Context& context) {
            while (!goOn)
                std::this_thread::yield();
            sawStop = context.stopRequested();
            context.deliver([&] { ++delivered; });
        }));
        left.take({});
        goOn = true; // not before it was left
    }
    EXPECT_TRUE(sawStop);
    main.runPending();
    EXPECT_EQ(delivered, 0);
}

TEST(StopCheck, endsSortingInTheMiddle)
{
    std::vector<int> numbers(100'000);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = static_cast<int>(i * 7919 % numbers.size());
    std::stop_source stop;
    const auto token = stop.get_token();
    StopCheck check(token);
    std::uint32_t compared = 0, atStop = 0;
    const auto before = [&](int a, int b) {
        if (++compared == 50'000 && stop.request_stop())
            atStop = compared;
        return a < b;
    };
    EXPECT_THROW(std::sort(numbers.begin(), numbers.end(), check.with(before)), Stopped);
    ASSERT_EQ(atStop, 50'000U);
    EXPECT_LE(compared - atStop, StopCheck::stepsBetween);
}

TEST(ManualMainThread, timersRunInOrderUnlessTheyAreDropped)
{
    ManualMainThread main;
    std::string order;
    const auto late = main.postAfter(std::chrono::milliseconds(2500), [&] { order += "late "; });
    const auto early = main.postAfter(std::chrono::milliseconds(100), [&] { order += "early "; });
    auto dropped = main.postAfter(std::chrono::milliseconds(200), [&] { order += "dropped "; });
    dropped.reset();
    main.advance(std::chrono::milliseconds(2499));
    EXPECT_EQ(order, "early ");
    main.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(order, "early late ");
}

} // namespace korvo
