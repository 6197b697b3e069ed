#include "app/view/Survey.h"

#include "tests/support/ManualMainThread.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <numeric>

namespace korvo {

TEST(Survey, takesTheFirstOfTheSelectedThatAreShownInTheirOrder)
{
    TestLibrary library;
    for (int i = 100; i > 0; --i) // the later ones come first in the grid
        library.photo(std::to_string(100 + i) + ".jpg");
    ManualMainThread main;
    LibraryStore store(main, std::move(library.catalog));
    store.select({7, 99, 98});
    EXPECT_EQ(surveyed(store), (std::vector<PhotoID>{99, 98, 7}));
    store.catalog().setRating(only(98), rejectedRating); // which the usual filter hides
    store.photosChanged(only(98));
    store.select({7, 99, 98});
    EXPECT_EQ(surveyed(store), (std::vector<PhotoID>{99, 7}));
    std::vector<PhotoID> all(100);
    std::iota(all.begin(), all.end(), 1);
    store.select(all);
    ASSERT_EQ(surveyed(store).size(), mostSurveyed);
    EXPECT_EQ(surveyed(store).front(), 100);
}

TEST(Survey, cellsLieInTheRoomWithoutOverlapAndAsLargeAsCanBe)
{
    for (const std::size_t count : {0U, 1U, 2U, 3U, 5U, 12U, 60U})
        for (const SurveyRoom room : {SurveyRoom{1000, 700}, {300, 900}, {2000, 200}}) {
            SCOPED_TRACE(testing::Message() << count << " in " << room.width << " x " << room.height);
            const auto cells = surveyCells(count, room);
            ASSERT_EQ(cells.size(), count);
            for (std::size_t i = 0; i < count; ++i) {
                const auto& cell = cells[i];
                EXPECT_TRUE(cell.left >= 0 && cell.top >= 0 && cell.left + cell.width <= room.width
                    && cell.top + cell.height <= room.height);
                if (i > 0) {
                    EXPECT_TRUE(cell.left >= cells[i - 1].left + cell.width || cell.top > cells[i - 1].top);
                }
            }
        }
    EXPECT_EQ(surveyCells(2, {1000, 700})[1].left, 0) << "side by side they would be smaller";
    EXPECT_GT(surveyCells(2, {2000, 700})[1].left, 0);
}

} // namespace korvo
