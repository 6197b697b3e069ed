// Readers of pictures on a disk that answers with errors from one byte on: this program's pread(2) does.
#include "platform/linux/images/OutsideDecoding.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr off_t nowhere = std::numeric_limits<off_t>::max();
std::atomic<off_t> failsFrom = nowhere;
std::atomic<int> failures = 0;

} // namespace

extern "C" ssize_t pread(int descriptor, void* buffer, size_t length, off_t offset)
{
    const off_t sound = failsFrom - offset;
    if (sound > 0)
        return syscall(SYS_pread64, descriptor, buffer, std::min(length, static_cast<size_t>(sound)), offset);
    ++failures;
    errno = EIO;
    return -1;
}

namespace korvo {

namespace {

namespace fs = std::filesystem;

/// What comes of reading a picture when the bytes behind a part of its file cannot be read.
std::string outcome(const fs::path& file, double soundPart, const ImageRequest& request)
{
    failures = 0;
    failsFrom = static_cast<off_t>(soundPart * static_cast<double>(fs::file_size(file)));
    std::string result;
    try {
        result = "a picture; " + decodeAnyPicture(file, request, {}).note;
    } catch (const ImageError& error) {
        result = error.which() == ImageError::Case::open ? error.reason() : "not open: " + error.reason();
    }
    failsFrom = nowhere;
    return result;
}

} // namespace

TEST(FailingDisk, isAnErrorAndNoPictureOfAnyKind)
{
    for (const auto& entry : fs::directory_iterator(fs::path(KORVO_TEST_DATA) / "images")) {
        if (!entry.path().has_extension())
            continue;
        for (const double soundPart : {0.05, 0.3, 0.6, 0.9})
            for (const auto& request : {ImageRequest(), {18, PixelKind::asStored, PictureSource::quick}}) {
                SCOPED_TRACE(entry.path().filename().string() + " from " + std::to_string(soundPart));
                const auto found = outcome(entry.path(), soundPart, request);
                EXPECT_EQ(found, failures > 0 ? "cannot be read: Input/output error" : "a picture; ");
                EXPECT_TRUE(failures > 0 || request.size > 0 || soundPart > 0.5)
                    << "it was read by other ways";
            }
        EXPECT_EQ(outcome(entry.path(), 2, {}), "a picture; ") << entry.path();
    }
}

} // namespace korvo
