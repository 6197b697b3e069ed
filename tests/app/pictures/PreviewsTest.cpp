#include "app/pictures/Previews.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace korvo {

namespace {

namespace fs = std::filesystem;

class FixedClock : public Clock {
public:
    UnixTime now() const override { return time; }
    UnixTime time = 1'000'000;
};

/// Gives one colour for every file, and counts how often it is asked.
class CountingReader : public ImageReader {
public:
    DecodedImage read(const fs::path&, const ImageRequest& request, const std::stop_token&) override
    {
        ++reads;
        Bitmap image(request.size, request.size);
        std::fill(image.bytes.begin(), image.bytes.end(), value);
        for (std::size_t alpha = 3; value > 0 && alpha < image.bytes.size(); alpha += 4)
            image.bytes[alpha] = 255;
        return {std::move(image), 4 * request.size, 4 * request.size, {}};
    }

    int reads = 0;
    std::uint8_t value = 255; ///< of all colours; 0 is transparent
};

class PreviewsTest : public ::testing::Test {
protected:
    /// How often the reader is asked when a preview is wanted from a cache that is opened anew.
    int readsFor(const RenderJob& job)
    {
        PreviewCache cache(folder / "Previews", bound, clock);
        Previews previews(reader, cache);
        const int before = reader.reads;
        EXPECT_EQ(previews.preview(job, {}).width, job.size);
        return reader.reads - before;
    }

    PreviewKey key(int size) const { return previewKey({photo, {}, size}); }

    fs::path cacheFile() const
    {
        fs::path newest;
        for (const auto& entry : fs::directory_iterator(folder / "Previews"))
            if (entry.path().extension() == ".sqlite")
                newest = std::max(newest, entry.path());
        return newest;
    }

    TemporaryFolder folder;
    fs::path photo = folder.write("a.jpg", "x");
    FixedClock clock;
    CountingReader reader;
    std::int64_t bound = 1 << 20;
};

} // namespace

TEST_F(PreviewsTest, rendersOnceForEachStateOfFileAndEdit)
{
    const RenderJob job{photo, {}, 16};
    EXPECT_EQ(readsFor(job), 1);
    EXPECT_EQ(readsFor(job), 0);
    RenderJob larger = job, edited = job, cropped = job;
    larger.size = 32;
    edited.edits.exposure = 1;
    cropped.edits.crop = CropRect{0, 0, 1, 0.99996};
    cropped.edits.straighten = 0.001;
    auto finer = cropped, coarser = cropped, off = edited;
    finer.edits.crop->h = 0.99999;
    finer.edits.straighten = -0.002;
    coarser.edits.crop->h = 0.9998;
    off.edits.disabledBricks = std::vector<std::string>{"exposure"};
    struct Case {
        const char* name;
        RenderJob job;
        int reads;
    };
    for (const auto& [name, other, reads] :
        {Case{"size", larger, 1}, Case{"edits", edited, 1}, Case{"crop", cropped, 1},
            Case{"beyond four and two decimals", finer, 0}, Case{"within", coarser, 1}})
        EXPECT_EQ(readsFor(other), reads) << name;
    fs::last_write_time(photo, fs::last_write_time(photo) + std::chrono::milliseconds(1));
    EXPECT_EQ(readsFor(job), 1) << "the file has changed";
    EXPECT_EQ(readsFor({folder / "gone.jpg", {}, 16}), 1) << "without a state there is nothing to keep it by";
}

TEST_F(PreviewsTest, showsAMissingFileAsItWasLast)
{
    PreviewCache cache(folder / "Previews", bound, clock);
    Previews previews(reader, cache);
    const RenderJob job{photo, {}, Previews::thumbnailSize};
    auto larger = job, edited = job;
    larger.size = 4096;
    edited.edits.exposure = -1;
    EXPECT_FALSE(previews.lastShown(job, {})) << "never shown";
    previews.preview(job, {});
    reader.value = 100;
    folder.write("a.jpg", "written by another program");
    previews.preview(job, {});
    fs::remove(photo);
    const auto green = [&](const RenderJob& of) { return previews.lastShown(of, {}).value().bytes[1]; };
    EXPECT_NEAR(green(job), 100, 3) << "the newest";
    EXPECT_NEAR(green(larger), 100, 3) << "at the size there is";
    EXPECT_LT(green(edited), 80) << "edited since then";
    folder.write("a.jpg", "back, but another picture");
    reader.value = 200;
    EXPECT_NEAR(previews.preview(job, {}).bytes[1], 200, 3);
}

TEST_F(PreviewsTest, aCacheOfAnEarlierFormIsMadeAnew)
{
    const RenderJob job{photo, {}, 16};
    readsFor(job);
    Database(cacheFile()).exec("ALTER TABLE previews DROP COLUMN file_state");
    EXPECT_EQ(readsFor(job), 1);
    EXPECT_EQ(readsFor(job), 0);
}

TEST_F(PreviewsTest, showsTransparentPicturesOverWhiteFromTheFirstTimeOn)
{
    reader.value = 0;
    PreviewCache cache(folder / "Previews", bound, clock);
    Previews previews(reader, cache);
    for (int time = 0; time < 2; ++time)
        EXPECT_EQ(previews.preview({photo, {}, 16}, {}).bytes.front(), 255);
}

TEST_F(PreviewsTest, forgetsWhatWasNotUsedForTheLongestTime)
{
    const std::vector<std::uint8_t> image(1000);
    PreviewCache cache(folder / "Previews", 10'500, clock);
    for (int size = 1; size <= 10; ++size, clock.time += 1000)
        cache.store(key(size), "as it is", image);
    EXPECT_TRUE(cache.find(key(1)));
    clock.time += 1000;
    cache.store(key(11), "as it is", image);
    for (const auto& [size, isKept] : {std::pair(1, true), {2, false}, {3, true}, {11, true}})
        EXPECT_EQ(cache.find(key(size)).has_value(), isKept) << size;
    cache.store(key(11), "as it is", image);
    cache.remove(key(11));
    EXPECT_FALSE(cache.find(key(11)));
    for (int size = 12; size < 200; ++size)
        cache.store(key(size), "as it is", image);
    EXPECT_LT(fs::file_size(cacheFile()), 200'000);
}

TEST_F(PreviewsTest, aDamagedCacheIsThrownAwayAndRebuilt)
{
    const RenderJob job{photo, {}, 16};
    readsFor(job);
    const auto whole = readFile(cacheFile());
    for (const auto& [name, contents] : {std::pair("empty", std::string()),
             {"rubbish", std::string(5000, 'x')}, {"cut off", whole.substr(0, 5000)},
             {"overwritten", whole.substr(0, 100) + std::string(whole.size() - 100, 'x')}}) {
        std::ofstream(cacheFile(), std::ios::binary) << contents;
        EXPECT_EQ(readsFor(job), 1) << name;
        EXPECT_EQ(readsFor(job), 0) << name;
    }
    {
        PreviewCache cache(folder / "Previews", bound, clock);
        const auto key = previewKey({photo, {}, job.size, static_cast<int>(job.source)});
        cache.remove(key);
        cache.store(key, previewState(photo).value(), std::vector<std::uint8_t>(9));
    }
    EXPECT_EQ(readsFor(job), 1) << "an image that is damaged";
    EXPECT_EQ(readsFor(job), 0);
    fs::remove_all(folder / "Previews");
    folder.write("Previews", "a file in its place");
    EXPECT_EQ(readsFor(job), 1);
    EXPECT_EQ(readsFor(job), 1);
}

TEST_F(PreviewsTest, aFullDiskOrALockCostsNoCache)
{
    const RenderJob job{photo, {}, 16};
    readsFor(job);
    const auto before = cacheFile();
    if (fork() == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{65'536, 65'536}; // bytes of a file, of which the log needs more
        setrlimit(RLIMIT_FSIZE, &small);
        PreviewCache cache(folder / "Previews", bound, clock);
        cache.store(key(1), {}, std::vector<std::uint8_t>(100'000));
        _exit(cache.find(key(1)) ? 1 : 0);
    }
    int status = 0;
    wait(&status);
    EXPECT_EQ(status, 0);
    Database other(before);
    const Transaction lock(other);
    EXPECT_EQ(readsFor(job), 0);
    EXPECT_EQ(cacheFile(), before);
}

TEST_F(PreviewsTest, severalThreadsFindAtOnceAndNoteTheUses)
{
    constexpr int images = 300; // more uses than are noted in one write
    PreviewCache cache(folder / "Previews", bound, clock);
    for (int size = 1; size <= images; ++size)
        cache.store(key(size), "as it is", std::vector<std::uint8_t>(10));
    clock.time += 1000;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 2; ++thread)
        threads.emplace_back([&] {
            for (int size = 1; size <= images; ++size)
                EXPECT_TRUE(cache.find(key(size))) << size;
        });
}

TEST_F(PreviewsTest, severalProcessesAndThreadsWriteAtOnce)
{
    constexpr int processes = 3, threads = 2, images = 60;
    const auto write = [&](int first) {
        PreviewCache cache(folder / "Previews", 1 << 24, clock);
        std::vector<std::jthread> workers;
        for (int thread = 0; thread < threads; ++thread)
            workers.emplace_back([&, thread] {
                for (int i = thread; i < images; i += threads)
                    cache.store(
                        key(first + i), {}, std::vector<std::uint8_t>(2000, static_cast<std::uint8_t>(i)));
            });
    };
    for (int process = 0; process < processes; ++process)
        if (fork() == 0) {
            write(1 + process * images / 2); // with a half in common
            _exit(0);
        }
    for (int process = 0, status = 0; process < processes; ++process) {
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    PreviewCache cache(folder / "Previews", 1 << 24, clock);
    for (int size = 1; size <= images * (processes + 1) / 2; ++size)
        EXPECT_TRUE(cache.find(key(size))) << size;
}

} // namespace korvo
