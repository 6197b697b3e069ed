// Files cut off or changed in any place are read as far as they go: no failure, no endless work.
#include "metadata/DescriptiveReader.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

std::vector<std::filesystem::path> fixtures()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry :
        std::filesystem::directory_iterator(std::filesystem::path(KORVO_TEST_DATA) / "metadata"))
        if (entry.path().has_extension())
            files.push_back(entry.path());
    return files;
}

/// Reads bytes as a file. A new one each time: some file systems wait for the disk when one is written over.
FileMetadata readAsFile(const TemporaryFolder& folder, const std::string& bytes)
{
    std::filesystem::remove(folder / "photo");
    return readFileMetadata(folder.write("photo", bytes));
}

} // namespace

TEST(DamagedFiles, areReadAsFarAsTheyGo)
{
    const TemporaryFolder folder;
    std::size_t withCamera = 0;
    for (const auto& fixture : fixtures()) {
        const auto whole = readFile(fixture);
        for (std::size_t length = 0; length < whole.size(); length += 1 + whole.size() / 40)
            EXPECT_NO_THROW(withCamera += readAsFile(folder, whole.substr(0, length)).exif.camera.has_value())
                << fixture << " of " << length << " bytes";
    }
    EXPECT_GT(withCamera, 0U) << "something can be read of many";
}

TEST(DamagedFiles, withEveryByteOfOneKindStillEnd)
{
    const TemporaryFolder folder;
    for (const auto& fixture : fixtures()) {
        const auto whole = readFile(fixture);
        for (std::size_t at = 12; at < whole.size(); at += 1 + whole.size() / 40)
            for (const char byte : {'\0', '\xFF'}) {
                auto changed = whole;
                std::fill_n(changed.begin() + static_cast<std::ptrdiff_t>(at),
                    std::min<std::size_t>(4, whole.size() - at), byte);
                EXPECT_NO_THROW(readAsFile(folder, changed)) << fixture << " at " << at;
            }
    }
}

TEST(DamagedFiles, whoseDirectoriesPointAtThemselvesAreReadOnce)
{
    // The EXIF and the GPS directory are the first one itself; the subdirectories are four billion.
    const TemporaryFolder folder;
    const std::string looping("II*\0\x08\0\0\0\x04\0"
                              "\x10\x01\x02\0\x04\0\0\0Acme"
                              "\x4A\x01\x04\0\xFF\xFF\xFF\xFF\x08\0\0\0"
                              "\x69\x87\x04\0\x01\0\0\0\x08\0\0\0"
                              "\x25\x88\x04\0\x01\0\0\0\x08\0\0\0"
                              "\x08\0\0\0",
        62);
    EXPECT_EQ(readAsFile(folder, looping).exif.camera, "Acme");
}

} // namespace korvo
