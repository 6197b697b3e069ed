#include "app/view/ViewerWishes.h"
#include "base/Json.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

PhotoList listOf(const std::vector<std::string>& names)
{
    std::vector<PhotoItem> items;
    for (const auto& name : names) {
        PhotoItem item;
        item.id = std::ssize(items) + 1;
        item.folder = SharedText("/p");
        item.filename = SharedText(name);
        items.push_back(item);
    }
    PhotoList list;
    list.assign(std::move(items), ListedBy::name);
    return list;
}

/// "b.cr2~" for a preview, "b.cr2" for the whole picture.
std::string text(const std::vector<DecodeWish>& wishes)
{
    std::string result;
    for (const auto& wish : wishes)
        result += (result.empty() ? "" : " ") + wish.file.filename().string()
            + (wish.source == PictureSource::quick ? "~" : "");
    return result;
}

} // namespace

TEST(ViewerWishes, theOneOnScreenThenMoreAheadThanBehindThenWhatTakesLong)
{
    const auto jpegs = listOf({"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg", "f.jpg"});
    EXPECT_EQ(text(viewerWishes(jpegs, {2, 1, 900})), "c.jpg d.jpg e.jpg b.jpg f.jpg");
    EXPECT_EQ(text(viewerWishes(jpegs, {2, -1, 900})), "c.jpg b.jpg a.jpg d.jpg");
    EXPECT_EQ(text(viewerWishes(jpegs, {9, 1, 900})), "");
    EXPECT_EQ(viewerWishes(jpegs, {0, 1, 900, ViewDetail::full})[1].size, 0);
    const auto raws = listOf({"a.cr2", "b.cr2", "c.cr2", "d.mov"});
    EXPECT_EQ(text(viewerWishes(raws, {0, 1, 900})), "a.cr2~ a.cr2 b.cr2~ c.cr2~ d.mov b.cr2");
}

TEST(ViewerWishes, enoughPixelsAreLeftAfterTheCrop)
{
    PhotoItem item;
    item.filename = SharedText("a.jpg");
    item.editsJSON = SharedText(toJson(PhotoEdits{.crop = CropRect{0, 0, 0.5, 0.25}}));
    EXPECT_EQ(picturesFor(item, 1000).front().size, 4000);
    item.editsJSON = SharedText("no record");
    EXPECT_EQ(picturesFor(item, 1000).front().size, 1000);
}

} // namespace korvo
