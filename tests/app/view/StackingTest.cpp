#include "app/view/Stacking.h"
#include "catalog/store/GroupActions.h"
#include "tests/support/ListedPhotos.h"
#include "tests/support/StoreOfPhotos.h"

#include <gtest/gtest.h>

namespace korvo {

using IDs = std::vector<PhotoID>;

TEST(Stacking, movesBehindThePickAndTakesAlongWhatACollapsedStackHides)
{
    StoreOfPhotos t(6);
    auto& store = t.store();
    const auto order = [&] { return shownIDs(store.list()); };
    createStack(store, IDs{1, 2, 3}, 1);
    toggleStacks(store, only(1));
    EXPECT_EQ(order(), (IDs{1, 2, 3, 4, 5, 6}));
    for (int i = 0; i < 2; ++i) // the second time it is the last already
        EXPECT_EQ(stepInStack(store, 2, 1), "");
    EXPECT_EQ(order(), (IDs{1, 3, 2, 4, 5, 6}));
    stepInStack(store, 2, -1);
    EXPECT_EQ(order(), (IDs{1, 2, 3, 4, 5, 6}));
    store.undo();
    EXPECT_EQ(order(), (IDs{1, 3, 2, 4, 5, 6}));
    EXPECT_NE(stepInStack(store, 1, 1), "") << "the pick stays";
    toggleStacks(store, only(1));
    stackPhotos(store, IDs{1, 5}, 1);
    EXPECT_EQ(order(), (IDs{1, 4, 6}));
    toggleStacks(store, only(1));
    EXPECT_EQ(order(), (IDs{1, 3, 2, 5, 4, 6}));
    unstackPhotos(store, only(1));
    EXPECT_EQ(order(), (IDs{1, 2, 3, 4, 5, 6}));
}

} // namespace korvo
