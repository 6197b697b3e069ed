#include "catalog/AutoStack.h"

#include "catalog/Stacks.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryStore.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <numeric>

namespace korvo {

namespace {

using IDs = std::vector<PhotoID>;

struct Shot {
    double time;
    int rating = 0;
};

/// Photos with the ids 1, 2, … in this order.
std::vector<PhotoItem> shots(std::initializer_list<Shot> all)
{
    std::vector<PhotoItem> items;
    for (const auto& shot : all) {
        PhotoItem& item = items.emplace_back();
        item.id = static_cast<PhotoID>(items.size());
        item.rating = shot.rating;
        item.captureDate = shot.time;
    }
    return items;
}

AutoStackPlan planOf(const std::vector<PhotoItem>& items, double interval)
{
    std::vector<std::uint32_t> positions(items.size());
    std::iota(positions.begin(), positions.end(), 0U);
    return {items, positions, interval};
}

std::vector<IDs> groupsOf(const AutoStackPlan& plan)
{
    std::vector<IDs> groups;
    for (const auto& group : plan.groups())
        groups.emplace_back(plan.photos(group).begin(), plan.photos(group).end());
    return groups;
}

} // namespace

TEST(AutoStackPlan, chainsPhotosThatAreAnIntervalApart)
{
    const auto chain = planOf(shots({{120}, {100}, {110}, {130.01}, {300}, {301}}), 10);
    EXPECT_EQ(groupsOf(chain), (std::vector<IDs>{{2, 3, 1}, {5, 6}}));
    EXPECT_EQ(autoStackText(chain, 10), "Within 10 seconds: 2 stacks from 5 photos");
    EXPECT_EQ(autoStackText(planOf(shots({{100}, {102}}), 1), 1), "Within 1 second: No stack");
    double time = 1'700'000'000.1;
    const auto fractions = planOf(shots({{time}, {time + 10}, {time + 20}, {time + 30.001}}), 10);
    EXPECT_EQ(groupsOf(fractions), (std::vector<IDs>{{1, 2, 3}})) << "exactly an interval, whatever rounds";
}

TEST(AutoStackPlan, takesMastersOutsideStacksThatHaveATime)
{
    auto items = shots({{100}, {101}, {102}, {0}, {-5}, {103}});
    items[1].versionOf = 1;
    items[2].stackID = 7;
    items[5].captureDate = std::nullopt;
    items[5].fileDate = 104.0;
    EXPECT_EQ(groupsOf(planOf(items, 10)), (std::vector<IDs>{{1, 6}}));
}

TEST(AutoStackPlan, picksTheHighestRatedAndOfThoseTheEarliest)
{
    EXPECT_EQ(planOf(shots({{103, 4}, {102, 4}, {101, -1}, {104, 3}}), 10).groups().front().pick, 2);
    EXPECT_EQ(planOf(shots({{101, -1}, {102, 0}}), 10).groups().front().pick, 2);
}

TEST(LibraryStore, autoStackIsOneStepOverWhatIsShown)
{
    TestLibrary library;
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"})
        library.photo(name);
    library.catalog->database().exec("UPDATE photos SET capture_date = 1000 + id * 5");
    library.catalog->setRating(only(2), rejectedRating);
    ManualMainThread main;
    LibraryStore store(main, std::move(library.catalog));
    const auto before = store.undoTitle();
    autoStack(store, 5);
    EXPECT_EQ(store.undoTitle(), "Auto-Stack");
    const auto stacks = stacksIn(store.catalog().database());
    ASSERT_EQ(stacks.size(), 1U) << "the rejected photo is not shown, and the first stands alone";
    EXPECT_EQ(stacks.front().members, (IDs{3, 4, 5}));
    EXPECT_EQ(store.list().shown().size(), 2U);
    store.undo();
    EXPECT_TRUE(stacksIn(store.catalog().database()).empty());
    EXPECT_EQ(store.undoTitle(), before);
}

} // namespace korvo
