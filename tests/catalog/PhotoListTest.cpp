#include "catalog/store/PhotoList.h"
#include "base/StopCheck.h"
#include "tests/support/ListedPhotos.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace korvo {

namespace {

PhotoItem photo(PhotoID id, const std::string& name)
{
    PhotoItem item;
    item.id = id;
    item.folder = "/p";
    item.filename = name;
    return item;
}

using IDs = std::vector<PhotoID>;

} // namespace

TEST(PhotoList, isPutInNoOrderOnceAStopIsRequested)
{
    std::vector<PhotoItem> items;
    for (PhotoID id = 1; id <= 3000; ++id)
        items.push_back(photo(id, std::to_string(id)));
    std::stop_source stop;
    stop.request_stop();
    for (const auto by : {ListedBy::name, ListedBy::hand}) {
        PhotoList list;
        EXPECT_THROW(list.assign(items, by, stop.get_token()), Stopped);
        list.assign(items, by);
        EXPECT_THROW(list.ordered(stop.get_token()), Stopped);
        EXPECT_EQ(shownIDs(list).size(), items.size()) << "it stays as it was";
    }
}

TEST(GridFilter, eachCaseIsOneTest)
{
    auto plain = photo(1, "a.jpg");
    auto rejected = photo(2, "b.jpg");
    rejected.rating = rejectedRating;
    auto rich = photo(3, "c.mov");
    rich.rating = 3;
    rich.flagged = true;
    rich.latitude = 0.0;
    rich.longitude = 0.0;
    rich.metadata.altText = "alt";
    rich.editsJSON = "{}";
    rich.memeJSON = "{}";
    PhotoList list;
    list.assign({plain, rejected, rich}, ListedBy::name);
    EXPECT_EQ(shownIDs(list), (IDs{1, 3})) << "rejected photos are hidden at first";
    struct Case {
        GridFilter filter;
        IDs shown;
    };
    for (const auto& [filter, shown] : {
             Case{GridFilter::unratedOrBetter, {1, 3}},
             {GridFilter::starred, {3}},
             {GridFilter::flagged, {3}},
             {GridFilter::rejected, {2}},
             {GridFilter::videos, {3}},
             {GridFilter::hasGPS, {3}},
             {GridFilter::noGPS, {1, 2}},
             {GridFilter::hasAlt, {3}},
             {GridFilter::missingAlt, {1, 2}},
             {GridFilter::adjusted, {3}},
             {GridFilter::playground, {3}},
         }) {
        list.arrange({std::nullopt, filter, {}});
        EXPECT_EQ(shownIDs(list), shown) << static_cast<int>(filter);
    }
}

TEST(SortKey, datesRunForwardStarsDownAndTiesGoByName)
{
    auto a = photo(1, "B.jpg");
    auto b = photo(2, "a.jpg");
    auto c = photo(3, "c.jpg");
    a.addedAt = 3;
    b.addedAt = c.addedAt = 1;
    a.rating = 2;
    c.rating = 5;
    b.fileDate = 9;
    c.fileDate = 4;
    a.captureDate = 5;
    PhotoList list;
    list.assign({a, b, c}, ListedBy::hand);
    struct Case {
        std::optional<SortKey> key;
        IDs shown;
    };
    for (const auto& [key, shown] :
        {Case{std::nullopt, {1, 2, 3}}, {SortKey::name, {2, 1, 3}}, {SortKey::imported, {2, 3, 1}},
            {SortKey::fileDate, {1, 3, 2}}, {SortKey::rating, {3, 1, 2}}, {SortKey::captured, {3, 1, 2}}}) {
        list.arrange({key, std::nullopt, {}});
        EXPECT_EQ(shownIDs(list), shown);
    }
}

TEST(PhotoList, aPhotoThatIsGivenTwiceIsListedOnce)
{
    PhotoList list;
    list.assign({photo(1, "a.jpg"), photo(3, "c.jpg")}, ListedBy::name);
    const auto renamed = photo(1, "z.jpg"), added = photo(2, "b.jpg");
    list.update({renamed, added, renamed, added}, {});
    EXPECT_EQ(shownIDs(list), (IDs{2, 3, 1}));
}

class UpdatedPhotoList : public ::testing::TestWithParam<ListedBy> { };

TEST_P(UpdatedPhotoList, equalsOneThatIsLoadedAnew)
{
    const bool byName = GetParam() == ListedBy::name;
    std::mt19937 random(7);
    const auto upTo = [&](unsigned n) { return random() % n; };
    const auto name = [&] { return "img" + std::to_string(upTo(40)) + ".jpg"; };
    PhotoID nextID = 1;
    std::vector<PhotoItem> model; // by hand in its order
    PhotoList list;
    list.assign({}, GetParam());
    for (int round = 0; round < 600; ++round) {
        std::vector<PhotoItem> changed;
        std::unordered_set<PhotoID> gone;
        const auto oneIn = upTo(2) ? 6U : 60U; // many at once are done otherwise than few
        for (auto& item : model)
            if (upTo(oneIn) == 0) {
                item.rating = static_cast<int>(upTo(7)) - 1;
                if (upTo(2))
                    item.captureDate = static_cast<double>(upTo(9));
                if (byName && upTo(8) == 0)
                    item.filename = name();
                changed.push_back(item);
            } else if (upTo(5 * oneIn) == 0) {
                gone.insert(item.id);
            }
        std::erase_if(model, [&](const PhotoItem& item) { return gone.contains(item.id); });
        for (auto added = model.size() < 80 ? upTo(3) : 0; added > 0; --added) {
            model.push_back(photo(nextID, name()));
            changed.push_back(model.back());
            nextID += upTo(2) ? 1 : 2;
        }
        if (upTo(5) == 0 && nextID > 2) // one comes back that has stood there before
            if (const auto id = static_cast<PhotoID>(1 + upTo(static_cast<unsigned>(nextID)));
                std::none_of(model.begin(), model.end(), [&](const auto& item) { return item.id == id; })) {
                model.push_back(photo(id, name()));
                changed.push_back(model.back());
                nextID = std::max(nextID, id + 1);
            }
        const auto before = shownIDs(list);
        const bool moved = list.update(changed, gone);
        PhotoList fresh;
        fresh.arrange(list.arrangement());
        fresh.assign(model, GetParam());
        ASSERT_EQ(photosByID(list), photosByID(fresh));
        ASSERT_EQ(shownIDs(list), shownIDs(fresh)) << "round " << round;
        ASSERT_TRUE(moved || before == shownIDs(list)) << "a change of what is shown went unsaid";
        for (const auto& item : model)
            ASSERT_EQ(*list.find(item.id), item);
        if (upTo(20) == 0)
            list.arrange({std::vector<std::optional<SortKey>>{
                              SortKey::rating, SortKey::captured, std::nullopt}[upTo(3)],
                upTo(2) ? std::optional(GridFilter::starred) : GridFilter::unratedOrBetter, {}});
    }
}

INSTANTIATE_TEST_SUITE_P(, UpdatedPhotoList, ::testing::Values(ListedBy::name, ListedBy::hand));

} // namespace korvo
