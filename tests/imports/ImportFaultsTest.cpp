#include "imports/FolderFiles.h"
#include "imports/ImportRun.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <sys/mount.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace korvo {

namespace fs = std::filesystem;

namespace {

const ImportProgress ignored = [](std::size_t) {};

/// A folder in memory that ends with the test; as large as asked for.
class SmallDisk {
public:
    SmallDisk(fs::path root, const char* options) : root_(std::move(root))
    {
        fs::create_directories(root_);
        isMounted_ = mount("tmpfs", root_.c_str(), "tmpfs", 0, options) == 0;
    }
    ~SmallDisk() { pull(); }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return isMounted_; }
    void pull()
    {
        if (isMounted_)
            umount2(root_.c_str(), MNT_DETACH);
        isMounted_ = false;
    }

private:
    fs::path root_;
    bool isMounted_ = false;
};

/// Files that let something happen before one of them, counted from 1, is read.
class EventfulFiles : public FolderFiles {
public:
    using FolderFiles::FolderFiles;

    std::size_t at = 0;
    std::function<void()> event;

    void read(
        const SourceFile& file, const std::function<void(Bytes)>& use, const std::stop_token& stop) override
    {
        if (++begun_ == at)
            event();
        FolderFiles::read(file, use, stop);
    }

private:
    std::size_t begun_ = 0;
};

ImportPlan planOf(FileSource& files, Catalog& catalog, const fs::path& copyTo)
{
    auto listing = listImportable(files, catalog, {});
    pick(listing.candidates, Duplicates::leaveOut);
    auto plan = planFor(listing);
    plan.copyTo = copyTo;
    return plan;
}

ImportResult run(TestLibrary& library, FileSource& files, const fs::path& copyTo)
{
    return runImport(
        *library.catalog, files, planOf(files, *library.catalog, copyTo), library.clock, {}, ignored);
}

/// Every photo's file is there, and every file is a photo's.
void expectFilesAndRowsAgree(Catalog& catalog, const fs::path& folder)
{
    std::size_t files = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        EXPECT_TRUE(catalog.masterAt(entry.path().native())) << entry.path();
        ++files;
    }
    EXPECT_EQ(catalog.photos(std::nullopt).size(), files);
}

} // namespace

TEST(ImportFaults, anotherPhotoNeverTakesTheRowOfOneWhoseFileIsMissing)
{
    TestLibrary library;
    const TemporaryFolder cards;
    const auto destination = library.folder / "Imports";
    cards.write("1/IMG_1.JPG", "the first card's");
    cards.write("2/IMG_1.JPG", "and another one's");
    FolderFiles first({cards / "1"}), second({cards / "2"});
    const auto photo = run(library, first, destination).photos.at(0);
    fs::remove(destination / "IMG_1.JPG");
    const auto result = run(library, second, destination);
    ASSERT_EQ(result.photos.size(), 1U);
    EXPECT_NE(result.photos[0], photo);
    EXPECT_EQ(readFile(library.item(result.photos[0]).path()), "and another one's");
    EXPECT_FALSE(fs::exists(destination / "IMG_1.JPG")) << "it waits for its photo's file to come back";
}

TEST(ImportFaults, namesThatCannotBeLookedUpEndTheFileNotTheImport)
{
    TestLibrary library;
    const TemporaryFolder card;
    card.write("a.jpg", "short");
    card.write(std::string(196, 'n') + ".jpg", "too long for the destination");
    auto destination = library.folder / "deep";
    while (destination.native().size() < 3950) // so that hidden names still fit
        destination /= std::string(std::min<std::size_t>(200, 3951 - destination.native().size()), 'd');
    FolderFiles files({card.path()});
    const auto result = run(library, files, destination);
    EXPECT_EQ(result.photos.size(), 1U);
    ASSERT_EQ(result.failures.size(), 1U);
    EXPECT_NE(sentenceOf(result.failures[0]).find("File name too long"), std::string::npos)
        << sentenceOf(result.failures[0]);
}

TEST(ImportFaults, theOriginalItselfIsNoCopy)
{
    TestLibrary library;
    const TemporaryFolder card;
    const auto original = card.write("DCIM/IMG_1.JPG", "the only one");
    FolderFiles files({card.path()});
    auto plan = planOf(files, *library.catalog, card / "DCIM/new");
    plan.card = card.path();
    EXPECT_THROW(runImport(*library.catalog, files, plan, library.clock, {}, ignored), std::invalid_argument);
    EXPECT_FALSE(fs::exists(*plan.copyTo));
    const auto result = run(library, files, card / "DCIM"); // a folder, not a card
    ASSERT_EQ(result.photos.size(), 1U);
    EXPECT_NE(library.item(result.photos[0]).path(), original);
}

TEST(ImportFaults, aCopyThatTheDiskChangesIsFoundOutAndGoes)
{
    TestLibrary library;
    const TemporaryFolder card;
    card.write("IMG_1.CR3", std::string(5 << 20, 'r')); // large enough to be written while it is read
    card.write("IMG_1.JPG", "its picture");
    const auto destination = library.folder / "Imports";
    EventfulFiles files({card.path()});
    files.at = 2; // both are one shot, which is read again when both are copied
    files.event = [&] {
        for (const auto& entry : fs::directory_iterator(destination))
            if (entry.file_size() > 0) // the raw file's
                std::fstream(entry.path(), std::ios::in | std::ios::out) << 'T';
    };
    const auto result = run(library, files, destination);
    ASSERT_EQ(result.failures.size(), 1U);
    EXPECT_EQ(sentenceOf(result.failures[0]),
        (card / "IMG_1.CR3").string() + ": the copy, read again, differs from the original");
    EXPECT_EQ(result.photos.size(), 1U);
    expectFilesAndRowsAgree(*library.catalog, destination);
}

TEST(ImportFaults, aFileThatIsWrittenWhileItIsReadIsNoPhotoYet)
{
    const TemporaryFolder folder;
    const auto path = folder.write("IMG_1.JPG", "still being downloaded");
    fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(1));
    FolderFiles files({folder.path()});
    const auto file = files.list(+[](std::string_view) { return true; }, {}).files.at(0);
    EXPECT_THROW(files.read(file, [&](Bytes) { folder.write("IMG_1.JPG", "STILL being downloaded"); }, {}),
        SourceError);
}

TEST(ImportFaults, aDriveThatGoesEndsTheImportAndNothingLandsBeneathIt)
{
    TestLibrary library;
    const TemporaryFolder card;
    for (int i = 100; i < 200; ++i)
        card.write("IMG_" + std::to_string(i) + ".JPG", "photo " + std::to_string(i));
    const auto root = library.folder / "drive";
    fs::create_directories(root / "Imports"); // beneath the drive is a folder of that name, too
    SmallDisk drive(root, "size=4m");
    if (!drive.isMounted())
        GTEST_SKIP() << "mounting is not allowed here: " << std::strerror(errno);
    EventfulFiles files({card.path()});
    files.at = 50;
    files.event = [&] { drive.pull(); };
    const auto result = run(library, files, root / "Imports");
    EXPECT_FALSE(result.broken.empty());
    EXPECT_GE(result.failures.size(), 1U);
    EXPECT_GE(result.photos.size(), 32U) << "whole batches stand";
    EXPECT_LT(result.photos.size(), 50U);
    EXPECT_TRUE(fs::is_empty(root / "Imports"));
}

TEST(ImportFaults, aDiskThatIsFullUnderTheLibraryTooLosesNothing)
{
    const TemporaryFolder place;
    SmallDisk disk(place / "disk", "size=8m");
    if (!disk.isMounted())
        GTEST_SKIP() << "mounting is not allowed here: " << std::strerror(errno);
    for (int i = 100; i < 200; ++i)
        place.write("card/IMG_" + std::to_string(i) + ".JPG", std::to_string(i) + std::string(15'000, '.'));
    const ManualClock clock;
    const auto catalog = std::make_unique<Catalog>(place / "disk/Library", clock);
    EventfulFiles files({place / "card"});
    const auto destination = place / "disk/Imports";
    files.at = 40;
    files.event = [&] {
        std::ofstream others(place / "disk/others");
        while (others << std::string(4096, 'x') << std::flush) { }
    };
    const auto full = runImport(*catalog, files, planOf(files, *catalog, destination), clock, {}, ignored);
    EXPECT_NE(full.broken.find("full"), std::string::npos) << full.broken;
    EXPECT_EQ(full.photos.size(), 32U) << "whole batches stand";
    EXPECT_EQ(full.failures.size(), 32U) << "those of the batch that could not be kept are listed";
    EXPECT_EQ(full.photos.size(), catalog->photos(std::nullopt).size());
    fs::remove(place / "disk/others");
    runImport(*catalog, files, planOf(files, *catalog, destination), clock, {}, ignored);
    EXPECT_EQ(catalog->photos(std::nullopt).size(), 100U);
    expectFilesAndRowsAgree(*catalog, destination);
}

} // namespace korvo
