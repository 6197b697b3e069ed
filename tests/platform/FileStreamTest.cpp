#include "platform/FileStream.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <algorithm>
#include <system_error>

namespace korvo {

namespace {

/// Bytes that do not repeat where blocks end.
std::string bytesOf(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i % 251);
    return bytes;
}

/// Writes in pieces of a size.
void stream(const std::filesystem::path& path, const std::string& bytes, std::size_t piece)
{
    const auto file = openFile(path, O_WRONLY | O_CREAT | O_TRUNC);
    FileStream stream(file, path);
    for (std::size_t at = 0; at < bytes.size(); at += piece)
        stream.write({bytes.data() + at, std::min(piece, bytes.size() - at)});
    stream.finish();
}

} // namespace

TEST(FileStream, writesAllBytesInTheirOrder)
{
    constexpr std::size_t block = 2 << 20;
    const TemporaryFolder folder;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, directUnit - 1, directUnit, directUnit + 1,
             block - 1, block, block + 1, 3 * block, 3 * block + 12'345})
        for (const std::size_t piece : {std::size_t{65'537}, 5 * block}) {
            const auto bytes = bytesOf(size);
            stream(folder / "file", bytes, piece);
            EXPECT_TRUE(readFile(folder / "file") == bytes) << size << " in pieces of " << piece;
        }
}

TEST(FileStream, tellsWhatItsThreadCouldNotWrite)
{
    try {
        stream("/dev/full", bytesOf(5 << 20), 1 << 20);
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
    }
    EXPECT_THROW(stream("/dev/full", "little", 6), std::system_error);
}

} // namespace korvo
