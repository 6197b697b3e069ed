#include "imports/VolumeWatcher.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <mutex>

namespace korvo {

namespace {

/// Volumes that come and go as the test says.
class FakeVolumes : public VolumeService {
public:
    std::vector<MountedVolume> mounted() override
    {
        const std::lock_guard lock(mutex_);
        if (broken_)
            throw VolumeError(VolumeError::Case::unavailable, "no service");
        return mounted_;
    }
    void eject(const std::filesystem::path&) override { }
    Watch watch(std::function<void()> changed) override
    {
        changed_ = std::move(changed);
        return std::make_shared<int>();
    }

    void set(std::vector<MountedVolume> mounted, bool broken = false)
    {
        {
            const std::lock_guard lock(mutex_);
            mounted_ = std::move(mounted);
            broken_ = broken;
        }
        if (changed_)
            changed_();
    }

private:
    std::mutex mutex_;
    std::vector<MountedVolume> mounted_;
    bool broken_ = false;
    std::function<void()> changed_;
};

} // namespace

TEST(Volume, isOfferedUnlessItIsBuiltInOrHoldsTheSystem)
{
    const TemporaryFolder folder;
    folder.write("card/DCIM/100CANON/a.jpg", "");
    folder.write("drive/a/DCIM/a.jpg", "");
    folder.write("file/DCIM", "no folder");
    const auto at = [&](const char* name) { return folder / name; };
    EXPECT_EQ(offeredVolumes({
                  {.root = "/", .removable = true, .ejectable = true, .holdsSystem = true},
                  {.root = at("card"), .name = "built in", .internal = true},
                  {.root = at("card"), .name = "EOS", .removable = true, .internal = true},
                  {.root = at("drive"), .name = "", .ejectable = true, .internal = true},
                  {.root = at("file"), .name = "NAS"},
              }),
        (std::vector<Volume>{
            {at("card"), "EOS", true}, {at("drive"), "drive", false}, {at("file"), "NAS", false}}));
}

TEST(VolumeWatcher, followsWhatComesAndGoes)
{
    ManualMainThread main;
    FakeVolumes service;
    service.set({{.root = "/a", .name = "A"}});
    VolumeWatcher watcher(main, service);
    int changes = 0;
    const auto connection = watcher.changed.connect([&] { ++changes; });
    const auto names = [&] {
        std::string all;
        for (const auto& volume : watcher.volumes())
            all += volume.name;
        return all;
    };
    EXPECT_TRUE(main.runUntil([&] { return names() == "A"; }));
    service.set({{.root = "/a", .name = "A"}, {.root = "/b", .name = "B"}});
    service.set({{.root = "/b", .name = "B"}});
    EXPECT_TRUE(main.runUntil([&] { return names() == "B"; }));
    service.set({}, true);
    EXPECT_TRUE(main.runUntil([&] { return watcher.fault() == "no service"; }));
    EXPECT_EQ(names(), "");
    EXPECT_GE(changes, 3);
}

} // namespace korvo
