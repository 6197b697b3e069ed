#include "platform/FileSync.h"

#include "platform/PartFile.h"
#include "platform/Sha256.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <system_error>
#include <thread>
#include <vector>

namespace korvo {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> namesIn(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
}

using Names = std::vector<std::string>;

} // namespace

TEST(FileSync, aFileIsReplacedAsAWholeOrNotAtAll)
{
    const TemporaryFolder folder;
    const auto file = folder / "new/folders/file";
    replaceFile(file, "first");
    folder.write("new/folders/file.part", "what a killed process left");
    replaceFile(file, "second");
    EXPECT_EQ(readFile(file), "second");
    auto other = PartFile::begin(file);
    std::jthread writer([&] { replaceFile(file, "third"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(readFile(file), "second") << "it waits for the other";
    other.reset();
    writer.join();
    EXPECT_EQ(readFile(file), "third");
    EXPECT_EQ(namesIn(file.parent_path()), Names{"file"}) << "nothing unfinished stays";

    const auto inTheWay = folder.write("full/x", "kept").parent_path();
    EXPECT_THROW(replaceFile(inTheWay, "third"), std::system_error);
    EXPECT_EQ(readFile(inTheWay / "x"), "kept");
    EXPECT_EQ(namesIn(folder.path()), (Names{"full", "new"}));
}

TEST(FileSync, aNameThatIsTakenByWhateverIsNotGivenAgain)
{
    const TemporaryFolder folder;
    const auto from = folder.write("from", "new");
    fs::create_symlink("nowhere", folder / "link");
    fs::create_directory(folder / "folder");
    for (const auto& taken : {folder.write("file", "old"), folder / "link", folder / "folder"}) {
        EXPECT_FALSE(moveToFreeName(from, taken)) << taken;
        EXPECT_EQ(readFile(from), "new");
    }
    EXPECT_EQ(readFile(folder / "file"), "old");
    EXPECT_EQ(fs::read_symlink(folder / "link"), "nowhere");
    EXPECT_TRUE(moveToFreeName(from, folder / "free"));
    EXPECT_EQ(readFile(folder / "free"), "new");
    EXPECT_FALSE(fs::exists(from));
    EXPECT_THROW(moveToFreeName(from, folder / "other"), std::system_error) << "it is gone";
}

TEST(FileSync, aFileInTheWayOfAFolderIsNamed)
{
    const TemporaryFolder folder;
    makeFolders(folder / "a/b/c");
    makeFolders(folder / "a/b/c");
    EXPECT_TRUE(fs::is_directory(folder / "a/b/c"));
    const auto file = folder.write("a/file", "x");
    try {
        makeFolders(file / "d");
        ADD_FAILURE() << "no folder can be in a file";
    } catch (const std::system_error& error) {
        EXPECT_NE(std::string(error.what()).find(file.string()), std::string::npos) << error.what();
        EXPECT_EQ(error.code(), std::errc::not_a_directory);
    }
    EXPECT_EQ(readFile(file), "x");
}

TEST(PartFile, isOneProcessesAndGoesUnlessItIsInstalled)
{
    const TemporaryFolder folder;
    const auto target = folder.write("model", "old");
    {
        auto part = PartFile::begin(target).value();
        part.write(Bytes("unfinished"));
        EXPECT_FALSE(PartFile::begin(target)) << "another writes it";
        PartFile::removeLeftOvers(target);
        EXPECT_EQ(readFile(part.path()), "unfinished") << "nor is it a left-over";
    }
    EXPECT_EQ(namesIn(folder.path()), Names{"model"});
    EXPECT_EQ(readFile(target), "old");

    folder.write("model.part", "what a killed process left, longer than what follows");
    auto part = PartFile::begin(target).value();
    part.write(Bytes("new "));
    part.write(Bytes("contents"));
    part.sync();
    part.install();
    EXPECT_EQ(readFile(target), "new contents");

    folder.write("model.part", "left again");
    PartFile::removeLeftOvers(target);
    EXPECT_EQ(namesIn(folder.path()), Names{"model"});
}

TEST(PartFile, goesAroundWhatIsInItsWayAndTakesNoNameThatIsTaken)
{
    const TemporaryFolder folder;
    const auto photo = folder.write("photo.jpg", "original");
    fs::create_symlink(photo, folder / "trap.part");
    EXPECT_THROW(sha256OnDisk(folder / "trap.part", {}), std::system_error);
    folder.write("full.part/x", "what is no file");
    for (const auto* const name : {"trap", "full"}) {
        auto around = PartFile::begin(folder / name).value();
        PartFile::removeLeftOvers(folder / name);
        around.write(Bytes("whole"));
        around.install();
        EXPECT_EQ(readFile(folder / name), "whole");
    }
    EXPECT_EQ(readFile(photo), "original");
    EXPECT_EQ(namesIn(folder.path()), (Names{"full", "full.part", "photo.jpg", "trap", "trap.part"}));

    auto part = PartFile::begin(folder / "copy").value();
    part.write(Bytes("abc"));
    EXPECT_EQ(sha256OnDisk(part.path(), {}), sha256OfFile(folder.write("abc", "abc"), {}));
    EXPECT_FALSE(part.moveTo(photo));
    EXPECT_EQ(readFile(photo), "original");
    EXPECT_TRUE(part.moveTo(folder / "photo-2.jpg"));
    part = PartFile::begin(folder / "copy").value();
    EXPECT_EQ(readFile(folder / "photo-2.jpg"), "abc") << "it is no longer the part file's";
}

TEST(PartFile, locksNoByteOfItsContents)
{
    const TemporaryFolder folder;
    const auto part = PartFile::begin(folder / "copy").value();
    const auto reader = openFile(part.path(), O_RDWR);
    struct flock contents { };
    contents.l_type = F_WRLCK;
    contents.l_whence = SEEK_SET;
    contents.l_len = off_t(1) << 60;
    EXPECT_EQ(fcntl(reader.descriptor(), F_OFD_SETLK, &contents), 0)
        << "where locks keep others out, it could not be read again";
    EXPECT_FALSE(PartFile::begin(folder / "copy"));
}

} // namespace korvo
