#include "app/view/SearchFilter.h"
#include "tests/support/ListedPhotos.h"
#include "tests/support/StoreOfPhotos.h"

#include <gtest/gtest.h>

namespace korvo {

using IDs = std::vector<PhotoID>;

TEST(SearchFilter, leavesWhatHasAllThatIsAskedFor)
{
    StoreOfPhotos t(0);
    auto& catalog = t.store().catalog();
    const auto add = [&](const char* name, const char* title, int rating, PhotoLabel label) {
        const NewPhoto photo{
            .folderID = {}, .path = std::string("/photos/") + name, .metadata = {.title = title}};
        const auto id = catalog.addPhotos({{photo}})[0].id;
        catalog.setRating(only(id), rating);
        catalog.setLabel(only(id), label);
    };
    add("1.jpg", "Sea and sand", 3, PhotoLabel::red);
    add("2.mov", "Sea", 5, PhotoLabel::blue);
    add("sea.jpg", "", 0, PhotoLabel::none);
    t.store().reload();
    struct Case {
        SearchFilter filter;
        IDs left;
    };
    for (const auto& [filter, left] : {
             Case{{}, {1, 2, 3}},
             {{.words = "SEA"}, {1, 2, 3}},
             {{.words = " sand  sea "}, {1}},
             {{.words = "mountain"}, {}},
             {{.leastStars = 3}, {1, 2}},
             {{.words = "sea", .leastStars = 4, .kind = SearchFilter::Kind::videos}, {2}},
             {{.labels = {PhotoLabel::red, PhotoLabel::blue}, .kind = SearchFilter::Kind::photos}, {1}},
             {{.flaggedOnly = true}, {}},
         }) {
        t.store().narrow(rulesOf(filter));
        auto shown = shownIDs(t.store().list());
        std::sort(shown.begin(), shown.end());
        EXPECT_EQ(shown, left) << filter.words << " " << filter.leastStars;
    }
}

} // namespace korvo
