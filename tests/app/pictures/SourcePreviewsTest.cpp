#include "app/pictures/SourcePreviews.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>

namespace korvo {

namespace {

/// A camera that is asked for pictures; of "none" it has none, and of "broken" it throws.
struct Camera : FileSource {
    SourceListing list(Admits, const std::stop_token&) override { return {}; }
    void read(const SourceFile&, const std::function<void(Bytes)>&, const std::stop_token&) override { }
    std::string preview(const SourceFile& file, const std::stop_token&) override
    {
        const auto name = file.path.filename().string();
        ++asked;
        const std::lock_guard lock(mutex);
        names.push_back(name);
        if (name == "broken")
            throw SourceError("no");
        return name == "none" ? "" : "picture of " + name;
    }

    std::mutex mutex; // holds it up
    std::atomic<std::size_t> asked = 0;
    std::vector<std::string> names;
};

} // namespace

TEST(SourcePreviews, fetchTheNewestWishesFirstAndForgetThoseThatLeftTheScreen)
{
    ManualMainThread main;
    const auto camera = std::make_shared<Camera>();
    std::size_t arrived = 0;
    auto previews = std::make_unique<SourcePreviews>(main, camera, [&] { ++arrived; });
    const auto wish = [&](const std::string& name) { return previews->find({"/DCIM/" + name}); };
    {
        const std::lock_guard held(camera->mutex);
        EXPECT_FALSE(wish("first"));
        while (camera->asked == 0)
            std::this_thread::yield();
        for (int i = 0; i < 200; ++i)
            wish(std::to_string(i));
        for (const char* name : {"none", "broken", "none"}) // painted twice
            wish(name);
    }
    ASSERT_TRUE(main.runUntil([&] { return arrived == SourcePreviews::mostWishes + 1; }));
    EXPECT_EQ(camera->names[1], "none");
    EXPECT_EQ(camera->names[2], "broken");
    EXPECT_EQ(camera->names[3], "199");
    const auto picture = wish("199");
    ASSERT_TRUE(picture);
    EXPECT_EQ(readFile(*picture), "picture of 199");
    EXPECT_FALSE(wish("none"));
    EXPECT_FALSE(wish("broken"));
    EXPECT_EQ(camera->names.size(), SourcePreviews::mostWishes + 1) << "neither is asked for again";
    for (int i = 0; i < 600; ++i) {
        wish("more" + std::to_string(i));
        ASSERT_TRUE(main.runUntil([&, before = arrived] { return arrived > before; }));
    }
    EXPECT_FALSE(std::filesystem::exists(*picture)) << "the oldest goes";
    const auto newest = wish("more599");
    ASSERT_TRUE(newest);
    EXPECT_EQ(readFile(*newest), "picture of more599");
    previews.reset();
    EXPECT_FALSE(std::filesystem::exists(newest->parent_path()));
    EXPECT_EQ(camera.use_count(), 1);
}

} // namespace korvo
