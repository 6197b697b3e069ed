#include "platform/linux/LinuxCameras.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

/// libgphoto2 and the drivers that it unloads again do not free a camera that could not be opened.
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off()
{
    return 1;
}

namespace korvo {

/// libgphoto2 takes a folder for a camera: its own driver for cameras that are mounted.
TEST(Cameras, listTheirFilesAndHandThemOut)
{
    const TemporaryFolder folder;
    folder.write("DCIM/100CANON/IMG_0002.JPG", std::string(300'000, 'x'));
    const auto first = folder.write("DCIM/100CANON/IMG_0001.CR3", "raw");
    folder.write("DCIM/100CANON/IMG_0001.txt", "not asked for");
    folder.write("DCIM/.hidden/IMG_0003.JPG", "hidden");
    LinuxCameras cameras;
    const auto camera = cameras.open({"Mass Storage Camera", "disk:" + folder.path().string()});
    const auto listing = camera->list([](std::string_view name) { return !name.ends_with("txt"); }, {});
    ASSERT_EQ(listing.files.size(), 2U);
    EXPECT_EQ(listing.files[0].path, "/DCIM/100CANON/IMG_0001.CR3");
    EXPECT_EQ(listing.files[1].size, 300'000U);
    EXPECT_EQ(std::chrono::floor<std::chrono::seconds>(*listing.files[0].modified),
        std::chrono::floor<std::chrono::seconds>(std::filesystem::last_write_time(first)));
    std::string bytes;
    const auto gather = [&](Bytes chunk) { bytes += chunk.text(); };
    camera->read(listing.files[1], gather, {});
    EXPECT_EQ(bytes, std::string(300'000, 'x'));

    std::stop_source stop;
    std::size_t chunks = 0;
    camera->read(
        listing.files[1], [&](Bytes) { stop.request_stop(), ++chunks; }, stop.get_token());
    EXPECT_EQ(chunks, 1U);
    EXPECT_THROW(camera->read(listing.files[1], [](Bytes) { throw std::bad_alloc(); }, {}), std::bad_alloc)
        << "what the receiver throws comes through";
    std::filesystem::remove(folder / "DCIM/100CANON/IMG_0002.JPG");
    EXPECT_THROW(camera->read(listing.files[1], gather, {}), SourceError);
    EXPECT_THROW(cameras.open({"Mass Storage Camera", "usb:999,999"}), SourceError);
    EXPECT_THROW(cameras.open({"No such camera", "usb:"}), SourceError);
}

TEST(Cameras, givePicturesOfTheirFilesWhereTheyHaveSome)
{
    const TemporaryFolder folder;
    const std::string photos = std::string(KORVO_TEST_DATA) + "/metadata/";
    folder.write("a.jpg", readFile(photos + "thumbnail.jpg"));
    folder.write("b.jpg", "nothing of the kind");
    LinuxCameras cameras;
    const auto camera = cameras.open({"Mass Storage Camera", "disk:" + folder.path().string()});
    EXPECT_EQ(camera->preview({"/a.jpg"}, {}), readFile(photos + "plain.jpg"));
    EXPECT_THROW(camera->preview({"/b.jpg"}, {}), SourceError);
}

} // namespace korvo
