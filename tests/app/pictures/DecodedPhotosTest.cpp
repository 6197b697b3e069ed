#include "app/pictures/LiveRenders.h"
#include "app/pictures/PhotoRender.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

namespace korvo {

namespace {

using namespace std::chrono_literals;

constexpr auto bad = "/dev/null"; // which is there

/// Grey pictures, of which "slow" ones wait until they are stopped, and bad ones fail.
class FakeReader : public ImageReader {
public:
    DecodedImage read(
        const std::filesystem::path& file, const ImageRequest& request, const std::stop_token& stop) override
    {
        ++reads;
        if (file == "slow")
            while (!stop.stop_requested())
                std::this_thread::sleep_for(1ms);
        if (file == "slow" || file == bad)
            throw std::runtime_error("cannot read " + file.string());
        Bitmap image(request.size, request.size);
        std::fill(image.bytes.begin(), image.bytes.end(), std::uint8_t(100));
        for (std::size_t i = 3; i < image.bytes.size(); i += 4)
            image.bytes[i] = 255;
        return {std::move(image), request.size, request.size, {}};
    }

    std::atomic<int> reads = 0;
};

class DecodedPhotosTest : public ::testing::Test {
protected:
    DecodeWish wish(const std::string& name) const { return {name, size, PictureSource::whole}; }
    bool isThere(const std::string& name) const { return photos.find(wish(name)) != nullptr; }

    static constexpr int size = 100;
    ManualMainThread main;
    FakeReader reader;
    DecodedPhotos photos{main, reader, std::size_t{3} * size* size * 4};
};

} // namespace

TEST_F(DecodedPhotosTest, decodesWhatIsWishedAndStopsWhatIsNot)
{
    photos.wish(0, {wish("slow"), wish("a"), wish(bad)});
    ASSERT_TRUE(main.runUntil([&] { return isThere("a") && isThere(bad); }));
    EXPECT_TRUE(photos.find(wish("a"))->isThere());
    EXPECT_EQ(photos.find(wish(bad))->fault, "cannot read /dev/null");
    photos.wish(0, {wish("b"), wish("c"), wish("a")}); // only possible when the slow one has been stopped
    ASSERT_TRUE(main.runUntil([&] { return isThere("b") && isThere("c"); }));
    EXPECT_FALSE(isThere("slow"));
    EXPECT_EQ(reader.reads, 5) << "a was decoded again";

    photos.wish(0, {wish(bad)});
    ASSERT_TRUE(main.runUntil([&] { return isThere(bad); })) << "a fault is final";
    EXPECT_EQ(reader.reads, 6);
}

TEST_F(DecodedPhotosTest, forgetsWhatWasNotWishedForTheLongestTimeAndNothingThatIsWished)
{
    for (const auto* const name : {"a", "b", "c", "d"}) {
        photos.wish(0, {wish(name)});
        ASSERT_TRUE(main.runUntil([&] { return isThere(name); }));
    }
    EXPECT_FALSE(isThere("a"));
    EXPECT_TRUE(isThere("b") && isThere("c"));
    photos.wish(1, {wish("b")}); // another viewer's
    photos.wish(0, {wish("e"), wish("f")});
    ASSERT_TRUE(main.runUntil([&] { return isThere("e") && isThere("f"); }));
    EXPECT_TRUE(isThere("b"));
    EXPECT_FALSE(isThere("c") || isThere("d"));
}

TEST_F(DecodedPhotosTest, decodesAgainWhatAnotherProgramHasChanged)
{
    const TemporaryFolder folder;
    for (const auto* const name : {"same", "changed"})
        folder.write(name, "a picture");
    const auto same = wish((folder / "same").string()), changed = wish((folder / "changed").string());
    photos.wish(0, {same, changed});
    ASSERT_TRUE(main.runUntil([&] { return reader.reads == 2 && !photos.isBusy() && photos.find(changed); }));
    std::filesystem::last_write_time(changed.file, std::filesystem::last_write_time(changed.file) + 1s);
    int arrived = 0;
    const auto connection = photos.arrived.connect([&](const DecodeWish& which) {
        EXPECT_EQ(which, changed);
        ++arrived;
    });
    photos.lookForChanges();
    ASSERT_TRUE(main.runUntil([&] { return arrived == 1; }));
    EXPECT_EQ(reader.reads, 3);
    EXPECT_TRUE(photos.find(same) && photos.find(changed));
}

TEST(LiveRenders, theNewestJobOfAViewWinsAndNothingComesAfterItIsGone)
{
    ManualMainThread main;
    FakeReader reader;
    LiveRenders renders(main);
    const auto photo
        = std::make_shared<const DecodedPhoto>(DecodedPhoto{reader.read("a", {.size = 400}, {}), {}});
    auto slot = LiveRenders::slot();
    std::vector<double> shown;
    constexpr int moves = 200;
    for (int i = 1; i <= moves; ++i)
        renders.render(slot, {photo, {.exposure = i * 0.01}, 0},
            [&, i](const LivePicture& picture) { shown.push_back(picture.image ? i : -1); });
    ASSERT_TRUE(main.runUntil([&] { return !shown.empty() && shown.back() == moves; }));
    EXPECT_LT(shown.size(), moves / 2U) << "jobs that nobody waits for any more were done";
    EXPECT_TRUE(std::ranges::is_sorted(shown));

    shown.clear();
    renders.render(slot, {photo, {}, 0}, [&](const LivePicture&) { shown.push_back(0); });
    slot.reset();
    bool another = false;
    const auto other = LiveRenders::slot();
    renders.render(other, {photo, {}, 0}, [&](const LivePicture&) { another = true; });
    ASSERT_TRUE(main.runUntil([&] { return another; }));
    EXPECT_TRUE(shown.empty());
}

TEST(LiveRenders, rendersAsThePhotoIsExportedAndSharesWhatIsUntouched)
{
    FakeReader reader;
    const auto photo
        = std::make_shared<const DecodedPhoto>(DecodedPhoto{reader.read("a", {.size = 64}, {}), {}});
    const PhotoEdits edits{.exposure = 1, .rotation = 1, .crop = CropRect{0, 0, 1, 0.5}};
    const auto live = livePicture({photo, edits, 40});
    EXPECT_EQ(live.image->width, 40);
    EXPECT_EQ(live.image->height, 20);
    EXPECT_EQ(std::pair(live.fullWidth, live.fullHeight), std::pair(64, 32));
    EXPECT_EQ(live.image->row(0)[0], renderPhoto(reader, {"a", edits, 40}, {}).image.row(0)[0]);
    EXPECT_EQ(live.histogram.red[live.image->row(0)[0] / 4], 1);

    PhotoEdits off{.exposure = 1};
    off.disabledBricks = {"exposure"};
    EXPECT_EQ(livePicture({photo, off, 64}).image.get(), &std::get<Bitmap>(photo->image.pixels));
}

} // namespace korvo
