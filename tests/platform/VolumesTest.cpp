#include "platform/linux/Disks.h"
#include "platform/linux/LinuxVolumes.h"
#include "tests/platform/DiskService.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <gio/gio.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <future>
#include <thread>

namespace korvo {

namespace {

const std::filesystem::path data = std::filesystem::path(KORVO_TEST_DATA) / "volumes";

std::vector<Disk> recordedDisks()
{
    GError* error = nullptr;
    GVariant* const answer
        = g_variant_parse(nullptr, readFile(data / "managed-objects.txt").c_str(), nullptr, nullptr, &error);
    EXPECT_NE(answer, nullptr) << (error ? error->message : "");
    const auto found = disks(answer);
    g_variant_unref(answer);
    return found;
}

} // namespace

TEST(Volumes, areTheMountsOfDisksAndServersEachOnce)
{
    const auto found = volumes(parseMountTable(readFile(data / "mountinfo.txt")), recordedDisks());
    const std::vector<MountedVolume> expected = {
        {.root = "/", .internal = true, .holdsSystem = true},
        {.root = "/boot/efi", .name = "EFI", .internal = true},
        {.root = "/media/me/EOS_DIGITAL", .name = "EOS_DIGITAL", .removable = true, .ejectable = true},
        {.root = "/media/me/My Disk\\x", .removable = true},
        {.root = "/mnt/archive", .name = "Archive", .removable = true, .internal = true},
        {.root = "/snap/core", .internal = true},
        {.root = "/mnt/nas"},
    };
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_EQ(found[i], expected[i]) << found[i].root;
}

TEST(Volumes, withoutTheServiceSayWhatIsMissing)
{
    const ScopedVariable bus("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
    try {
        LinuxVolumes().mounted();
        FAIL();
    } catch (const VolumeError& error) {
        EXPECT_EQ(error.which(), VolumeError::Case::unavailable);
        EXPECT_NE(std::string(error.what()).find("(UDisks2) does not answer"), std::string::npos);
    }
}

/// A real small file system, which the service says to be a card.
class MountedCard : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (mount("tmpfs", folder.path().c_str(), "tmpfs", 0, "size=64k") != 0)
            GTEST_SKIP() << "mounting is not allowed here: " << std::strerror(errno);
        struct stat status { };
        stat(folder.path().c_str(), &status);
        service.showCard(status.st_dev, folder.path());
    }
    void TearDown() override { umount2(folder.path().c_str(), MNT_DETACH); }

    const MountedVolume* card(const std::vector<MountedVolume>& mounted) const
    {
        for (const auto& volume : mounted)
            if (volume.root == folder.path())
                return &volume;
        return nullptr;
    }

    TemporaryFolder folder;
    DiskService service;
    const ScopedVariable bus{"DBUS_SYSTEM_BUS_ADDRESS", service.address()};
    LinuxVolumes volumes;
};

TEST_F(MountedCard, isSeenAndEjectedAndItsGoingIsTold)
{
    const auto mounted = volumes.mounted();
    ASSERT_NE(card(mounted), nullptr);
    EXPECT_EQ(card(mounted)->name, "EOS_DIGITAL");
    EXPECT_TRUE(card(mounted)->ejectable);

    std::promise<void> changed;
    std::once_flag once;
    auto watch = volumes.watch([&] { std::call_once(once, [&] { changed.set_value(); }); });
    volumes.eject(folder.path());
    EXPECT_EQ(changed.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    watch.reset();
    EXPECT_EQ(service.calls(), (std::vector<std::string>{"Unmount", "Eject"}));
    EXPECT_EQ(card(volumes.mounted()), nullptr);
}

TEST_F(MountedCard, inUseStaysAndSaysWhy)
{
    service.refuse("Error unmounting: target is busy");
    try {
        volumes.eject(folder.path());
        FAIL();
    } catch (const VolumeError& error) {
        EXPECT_STREQ(error.what(), "Error unmounting: target is busy");
    }
    EXPECT_NE(card(volumes.mounted()), nullptr);
    EXPECT_THROW(volumes.eject("/proc"), VolumeError);
}

} // namespace korvo
