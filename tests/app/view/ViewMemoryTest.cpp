#include "app/view/ViewMemory.h"
#include "catalog/store/LibraryActions.h"
#include "tests/support/StoreOfPhotos.h"

#include <gtest/gtest.h>

namespace korvo {

using IDs = std::vector<PhotoID>;

TEST(ViewMemory, bringsBackSourceOrderAndSelectionAndPassesOverWhatIsGone)
{
    StoreOfPhotos t(3);
    auto& store = t.store();
    const auto album = createAlbum(store, "Best", {});
    addToAlbum(store, album, IDs{1, 2, 3});
    store.chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    store.arrange(SortKey::rating, std::nullopt);
    store.select({3, 1});
    const auto memory = viewMemoryOf(textOf(viewMemory(store)));

    store.chooseSource({});
    store.arrange({}, GridFilter::starred);
    restoreView(store, memory);
    EXPECT_EQ(store.source()->id, album);
    EXPECT_EQ(store.list().sortKey(), SortKey::rating);
    EXPECT_EQ(store.list().filter(), std::nullopt);
    EXPECT_EQ(store.selection(), (IDs{3, 1}));

    store.chooseSource({});
    deleteAlbum(store, album);
    removePhotos(store, IDs{3});
    restoreView(store, memory);
    EXPECT_EQ(store.source(), std::nullopt);
    EXPECT_EQ(store.selection(), IDs{1});
    restoreView(store, viewMemoryOf("{\"source\": 3"));
    EXPECT_EQ(store.list().filter(), GridFilter::unratedOrBetter);
}

} // namespace korvo
