#include "metadata/containers/FileWindow.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <numeric>

namespace korvo {

namespace {

/// A file whose bytes tell where they stand.
std::string numbered(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i % 251);
    return bytes;
}

} // namespace

TEST(FileWindow, showsRangesInTheHeadBeyondItAndAcross)
{
    const TemporaryFolder folder;
    const auto contents = numbered(100'000);
    const auto path = folder.write("photo", contents);
    FileWindow file(path);
    EXPECT_EQ(file.size(), contents.size());
    for (const ByteRange range :
        {ByteRange{0, 10}, {FileWindow::headSize - 5, 10}, {90'000, 10'000}, {99'999, 1}}) {
        const auto bytes = file.view(range);
        ASSERT_TRUE(bytes) << range.offset;
        EXPECT_EQ(bytes->text(), contents.substr(range.offset, range.length)) << range.offset;
    }
    for (const ByteRange outside :
        {ByteRange{99'999, 2}, {100'001, 0}, {~std::uint64_t(0), 2}, {5, ~std::uint64_t(0)}})
        EXPECT_FALSE(file.view(outside)) << outside.offset;
}

TEST(FileWindow, readsNoMoreThanTwiceTheFile)
{
    const TemporaryFolder folder;
    const auto path = folder.write("photo", numbered(100'000));
    FileWindow file(path);
    int readable = 0;
    for (std::uint64_t offset = 30'000; offset > 20'000; offset -= 1000)
        readable += file.view(offset, 60'000) ? 1 : 0;
    EXPECT_EQ(readable, 3);
    std::vector<std::uint8_t> large(500'000);
    EXPECT_TRUE(file.append(large));
    EXPECT_FALSE(file.append(large));
    EXPECT_TRUE(file.view(30'000, 60'000)) << "what was read stays";
}

TEST(FileWindow, joinsRangesAndKeepsThem)
{
    const TemporaryFolder folder;
    const auto contents = numbered(40'000);
    const auto path = folder.write("photo", contents);
    FileWindow file(path);
    const auto joined = file.joined({{30'000, 3}, {5, 2}});
    ASSERT_TRUE(joined);
    EXPECT_EQ(joined->length, 5U);
    EXPECT_EQ(file.view(*joined)->text(), contents.substr(30'000, 3) + contents.substr(5, 2));
    EXPECT_EQ(file.view(joined->offset + 3, 2)->text(), contents.substr(5, 2));
    EXPECT_FALSE(file.joined({{0, 1}, {40'000, 1}}));
    EXPECT_EQ(file.keep("text"), "text");
}

} // namespace korvo
