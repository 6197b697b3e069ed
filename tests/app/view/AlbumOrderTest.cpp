#include "app/view/AlbumOrder.h"
#include "app/view/Stacking.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"
#include "tests/support/ListedPhotos.h"
#include "tests/support/StoreOfPhotos.h"

#include <gtest/gtest.h>

namespace korvo {

using IDs = std::vector<PhotoID>;

TEST(AlbumOrder, movesWhatIsShownTogether)
{
    StoreOfPhotos t(5);
    auto& store = t.store();
    const auto album = createAlbum(store, "album", {});
    addToAlbum(store, album, IDs{1, 2, 3, 4, 5});
    placeInAlbum(store, IDs{5}, 0); // no album is shown
    store.chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    const auto order = [&] { return shownIDs(store.list()); };
    placeInAlbum(store, IDs{5, 3}, 0);
    EXPECT_EQ(order(), (IDs{3, 5, 1, 2, 4})) << "as they were shown";
    placeInAlbum(store, IDs{5, 1}, 2);
    EXPECT_EQ(order(), (IDs{3, 5, 1, 2, 4})) << "between themselves";
    stepInAlbum(store, IDs{5, 1}, 1);
    EXPECT_EQ(order(), (IDs{3, 2, 5, 1, 4}));
    for (int i = 0; i < 3; ++i) // the last time they are the first already
        stepInAlbum(store, IDs{5, 1}, -1);
    EXPECT_EQ(order(), (IDs{5, 1, 3, 2, 4}));
    createStack(store, IDs{3, 2}, 3);
    toggleStacks(store, only(3));
    ASSERT_EQ(order(), (IDs{5, 1, 3, 2, 4}));
    stepInAlbum(store, IDs{1}, 1);
    EXPECT_EQ(order(), (IDs{5, 3, 2, 1, 4})) << "past the whole stack";
    stepInAlbum(store, IDs{1}, -1);
    EXPECT_EQ(order(), (IDs{5, 1, 3, 2, 4}));
    store.arrange(SortKey::rating, std::nullopt);
    EXPECT_FALSE(isArrangedByHand(store));
}

} // namespace korvo
