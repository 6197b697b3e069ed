#include "app/AddFiles.h"
#include "base/Text.h"
#include "catalog/ImportMemory.h"
#include "imports/FolderFiles.h"
#include "imports/ImportRun.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <map>
#include <random>
#include <set>

namespace korvo {

namespace fs = std::filesystem;

namespace {

const fs::path data = fs::path(KORVO_TEST_DATA) / "metadata";

std::string numbered(const char* pattern, int number)
{
    char text[64];
    std::snprintf(text, sizeof text, pattern, number);
    return text;
}

/// A photo that is like no other.
std::string photo(const std::string& name)
{
    static const auto bytes = readFile(data / "camera.jpg");
    return bytes + name + std::string(2000, '.');
}

/// How often each contents stand in a folder and those in it.
std::map<std::string, int> counted(const fs::path& folder)
{
    std::map<std::string, int> all;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            ++all[readFile(entry.path())];
    return all;
}

/// A card of 300 photos and what else cards hold.
struct Card {
    Card()
    {
        for (int i = 0; i < 299; ++i)
            write(numbered(i < 150 ? "DCIM/100CANON/IMG_%04d.JPG" : "DCIM/101CANON/IMG_%04d.JPG", i));
        write("DCIM/101CANON/IMG_0149.JPG"); // of the name and size of one in the other folder
        write("DCIM/100CANON/IMG_0000.CR2");
        folder.write("DCIM/100CANON/IMG_0000.xmp", "<x/>");
        folder.write("DCIM/101CANON/MVI_0300.MOV", readFile(data / "phone.mov"));
        folder.write("DCIM/100CANON/IMG_0990.JPG", "");
        folder.write("DCIM/100CANON/.IMG_0001.JPG", "hidden");
        folder.write("DCIM/100CANON/CANON.CTG", "of no use");
    }

    fs::path write(const std::string& name) const { return folder.write(name, photo(name)); }

    /// The contents of its photos, each of which is there once.
    std::map<std::string, int> photos() const
    {
        auto all = counted(folder.path());
        for (const char* other : {"", "hidden", "of no use", "<x/>"})
            all.erase(other);
        return all;
    }

    TemporaryFolder folder;
};

/// A card with files that cannot be read, or that is pulled after some.
class FaultyFiles : public FolderFiles {
public:
    using FolderFiles::FolderFiles;

    std::set<std::string> unreadable;
    std::size_t readable = 1'000'000;

    void read(
        const SourceFile& file, const std::function<void(Bytes)>& use, const std::stop_token& stop) override
    {
        if (unreadable.contains(file.path.filename().string()) || readable == 0) {
            use(Bytes("some of it"));
            throw SourceError("could not be read: Input/output error");
        }
        --readable;
        FolderFiles::read(file, use, stop);
    }
};

/// The bytes of every file of a folder by its name, hidden ones too.
std::map<std::string, std::string> contents(const fs::path& folder)
{
    std::map<std::string, std::string> all;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            all[entry.path().filename().string()] = readFile(entry.path());
    return all;
}

class Import : public ::testing::Test {
protected:
    ImportResult run(
        ImportPlan plan, const std::stop_token& stop = {}, const ImportProgress& progress = ignored)
    {
        auto listing = listImportable(files, *library.catalog, {});
        pick(listing.candidates, Duplicates::leaveOut);
        const auto found = planFor(listing);
        plan.files = found.files;
        plan.sidecars = found.sidecars;
        return runImport(*library.catalog, files, plan, library.clock, stop, progress);
    }

    std::size_t inLibrary() { return library.catalog->photos(std::nullopt).size(); }

    inline static const ImportProgress ignored = [](std::size_t) {};
    Card card;
    FaultyFiles files{{card.folder.path()}};
    TestLibrary library;
    const fs::path destination = library.folder / "Imports";
};

} // namespace

TEST_F(Import, takesACardWithAllThatMayBeOnIt)
{
    const TemporaryFolder others; // 80 known by their names, 20 imported before under other names
    for (int i = 0; i < 100; ++i)
        others.write(fs::path(i < 80 ? "known" : "renamed") / numbered("IMG_%04d.JPG", i),
            photo(numbered("DCIM/100CANON/IMG_%04d.JPG", i)));
    addFiles(
        *library.catalog, std::vector{others / "known"}, library.clock, ReadCameraData::now, {}, ignored);
    FolderFiles renamed({others / "renamed"});
    const auto before = planFor(listImportable(renamed, *library.catalog, {}));
    auto earlier = before;
    earlier.copyTo = others / "earlier";
    earlier.namingPattern = "earlier-{seq}";
    EXPECT_EQ(runImport(*library.catalog, renamed, earlier, library.clock, {}, ignored).photos.size(), 20U);

    files.unreadable = {"IMG_0200.JPG", "IMG_0201.JPG"};
    fs::create_directories(destination);
    std::ofstream(destination / "001 IMG_0000.CR2") << "something else of that name";
    const auto result = run({.copyTo = destination,
        .namingPattern = "{seq} {name}",
        .byDay = true,
        .creator = "C",
        .keywords = "a, b"});
    // 303 are listed; 100 are known, two unreadable, one is empty.
    EXPECT_EQ(result.photos.size(), 200U);
    ASSERT_EQ(result.failures.size(), 3U);
    EXPECT_EQ(sentenceOf(result.failures[0]),
        (card.folder / "DCIM/100CANON/IMG_0990.JPG").string() + ": the file is empty");
    EXPECT_EQ(sentenceOf(result.failures[1]),
        (card.folder / "DCIM/101CANON/IMG_0200.JPG").string() + ": could not be read: Input/output error");

    for (const auto& item : library.catalog->photosByID(result.photos)) {
        EXPECT_EQ(item.metadata.creator, "C");
        EXPECT_EQ(item.metadata.keywords, "a, b");
        EXPECT_TRUE(item.dirty);
        EXPECT_TRUE(item.projectID);
        EXPECT_EQ(*item.fileDate, modificationTime(item.path()));
    }
    const auto copies = contents(destination);
    EXPECT_EQ(copies.size(), 202U) << "with the sidecar and what was there";
    EXPECT_EQ(copies.at("001 IMG_0000-2.CR2"), photo("DCIM/100CANON/IMG_0000.CR2"));
    EXPECT_EQ(copies.at("001 IMG_0000-2.xmp"), "<x/>") << "all files of a shot get one name";
    EXPECT_EQ(copies.at("001 IMG_0000.CR2"), "something else of that name");
    EXPECT_EQ(fs::last_write_time(destination / "001 IMG_0000-2.CR2"),
        fs::last_write_time(card.folder / "DCIM/100CANON/IMG_0000.CR2"));
    const auto tree = library.catalog->tree();
    ASSERT_EQ(tree.projects.size(), 1U) << "all were taken on one day";
    EXPECT_EQ(tree.projects[0].name, "2024-05-01");

    files.unreadable.clear();
    const auto again = run({.copyTo = destination, .namingPattern = "{seq} {name}", .byDay = true});
    EXPECT_EQ(again.photos.size(), 2U) << "those that could not be read";
    EXPECT_EQ(library.catalog->tree().projects.size(), 1U);
    std::set<std::string> numbers;
    for (const auto& [name, bytes] : contents(destination))
        numbers.insert(name.substr(0, 3));
    EXPECT_EQ(numbers.size(), 202U) << "each shot has its own, in the end";
    auto wanted = card.photos();
    for (int i = 0; i < 100; ++i)
        wanted.erase(photo(numbered("DCIM/100CANON/IMG_%04d.JPG", i)));
    wanted.insert({{"<x/>", 1}, {"something else of that name", 1}});
    EXPECT_EQ(counted(destination), wanted) << "each byte for byte";
}

TEST_F(Import, twoFilesOfOneNameAndCompleteCopiesOfOthersAreToldApart)
{
    fs::create_directories(destination);
    fs::copy(card.folder / "DCIM/100CANON/IMG_0003.JPG",
        destination / "IMG_0003.JPG"); // by hand, or before a kill
    const auto killed = card.folder / "DCIM/100CANON/IMG_0004.JPG"; // by an import under other names
    fs::copy(killed, destination / "other-017.JPG");
    ImportMemory(*library.catalog)
        .announce(
            duplicateKey("IMG_0004.JPG", fs::file_size(killed)), (destination / "other-017.JPG").native());
    EXPECT_EQ(run({.copyTo = destination}).photos.size(), 302U);
    const auto copies = contents(destination);
    EXPECT_EQ(copies.at("IMG_0149.JPG"), photo("DCIM/100CANON/IMG_0149.JPG"));
    EXPECT_EQ(copies.at("IMG_0149-2.JPG"), photo("DCIM/101CANON/IMG_0149.JPG"));
    EXPECT_FALSE(copies.contains("IMG_0003-2.JPG"));
    EXPECT_FALSE(copies.contains("IMG_0004.JPG"));
    EXPECT_EQ(copies.size(), inLibrary() + 1);
}

TEST_F(Import, aCardThatIsPulledLosesNothingAndGoesOnLater)
{
    files.readable = 100;
    const auto pulled = run({.copyTo = destination});
    EXPECT_EQ(pulled.photos.size(), 99U);
    EXPECT_EQ(pulled.failures.size(), 204U);
    EXPECT_EQ(contents(destination).size(), 100U) << "and nothing half-written";
    files.readable = 1000;
    run({.copyTo = destination});
    EXPECT_EQ(contents(destination).size(), inLibrary() + 1);
    EXPECT_EQ(inLibrary(), 302U);
}

TEST_F(Import, aStopKeepsWhatIsDone)
{
    const auto stop = std::make_unique<std::stop_source>(); // in place GCC 12 warns of the library itself
    const auto result = run({.copyTo = destination}, stop->get_token(), [&](std::size_t index) {
        if (index == 100)
            stop->request_stop();
    });
    EXPECT_TRUE(result.cancelled);
    EXPECT_TRUE(result.failures.empty());
    EXPECT_GT(result.photos.size(), 90U);
    EXPECT_LT(result.photos.size(), 100U);
    EXPECT_EQ(contents(destination).size(), result.photos.size() + 1) << "with the sidecar";
    EXPECT_EQ(inLibrary(), result.photos.size());
}

TEST_F(Import, aFullDiskFailsFileByFileAndGoesOnLater)
{
    fs::create_directories(destination);
    if (mount("tmpfs", destination.c_str(), "tmpfs", 0, "size=600k") != 0)
        GTEST_SKIP() << "mounting is not allowed here: " << std::strerror(errno);
    const auto full = run({.copyTo = destination});
    EXPECT_GT(full.photos.size(), 20U);
    ASSERT_GT(full.failures.size(), 20U);
    EXPECT_NE(sentenceOf(full.failures.back()).find("No space left on device"), std::string::npos);
    auto copies = contents(destination);
    EXPECT_GE(full.photos.size() + 1, copies.size()) << "and nothing half-written";
    mount("tmpfs", destination.c_str(), "tmpfs", MS_REMOUNT, "size=16m");
    run({.copyTo = destination});
    copies = contents(destination);
    EXPECT_EQ(inLibrary(), 302U);
    EXPECT_EQ(copies.size(), 303U);
    for (int i = 0; i < 149; ++i)
        EXPECT_EQ(copies.at(numbered("IMG_%04d.JPG", i)), photo(numbered("DCIM/100CANON/IMG_%04d.JPG", i)));
    umount2(destination.c_str(), MNT_DETACH);
}

TEST_F(Import, filesThatStayAreReferencedWhereTheyLie)
{
    const auto result = run({.namingPattern = "new", .newProject = "Trip"});
    EXPECT_EQ(result.photos.size(), 302U);
    const auto item = library.item(result.photos.front());
    EXPECT_EQ(item.path().parent_path(), card.folder / "DCIM/100CANON");
    EXPECT_EQ(library.catalog->tree().folders.at(0).path, card.folder.path().native());
    EXPECT_EQ(library.catalog->tree().projects.at(0).count, 302);
}

TEST_F(Import, aShotStaysTogetherWhenSomeOfItComesLater)
{
    const TemporaryFolder shots;
    for (const char* name : {"IMG_1.CR2", "IMG_1.JPG", "IMG_1.xmp", "IMG_2.CR2", "IMG_2.xmp"})
        shots.write(name, photo(name));
    fs::create_directories(destination);
    std::ofstream(destination / "IMG_1.CR2") << "another one of that name";
    FaultyFiles faulty({shots.path()});
    const auto import = [&] {
        auto listing = listImportable(faulty, *library.catalog, {});
        pick(listing.candidates, Duplicates::leaveOut);
        auto plan = planFor(listing);
        plan.copyTo = destination;
        return runImport(*library.catalog, faulty, plan, library.clock, {}, ignored);
    };
    faulty.unreadable = {"IMG_1.JPG", "IMG_2.xmp"};
    EXPECT_EQ(import().photos.size(), 2U);
    EXPECT_FALSE(fs::exists(destination / "IMG_2.xmp"));
    std::ofstream(destination / "IMG_1-2.xmp") << "written since";

    faulty.unreadable.clear();
    EXPECT_EQ(import().photos.size(), 1U);
    for (int round = 0; round < 2; ++round, import()) { // nothing is left for another import
        const auto copies = contents(destination);
        EXPECT_EQ(copies.size(), 6U);
        EXPECT_EQ(copies.at("IMG_1-2.JPG"), photo("IMG_1.JPG"));
        EXPECT_EQ(copies.at("IMG_1-2.xmp"), "written since");
        EXPECT_EQ(copies.at("IMG_2.xmp"), photo("IMG_2.xmp"));
    }
}

/// Runs the program and kills it ten times, each time when some more files have been copied.
TEST_F(Import, aKilledImportGoesOnWhereItEnded)
{
    const auto folder = library.catalog->libraryURL().native();
    const auto start = [&] {
        const auto child = fork();
        if (child == 0) {
            setenv("KORVO_CONFIG", (library.folder / "config").c_str(), 1);
            setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere", 1);
            if (!std::freopen("/dev/null", "w", stdout) || !std::freopen("/dev/null", "w", stderr))
                _exit(1);
            execl(KORVO_PROGRAM, KORVO_PROGRAM, "--library", folder.c_str(), "import",
                card.folder.path().c_str(), "--copy-to", destination.c_str(), "--pattern", "trip-{seq}",
                nullptr);
            _exit(127);
        }
        return child;
    };
    const auto copied = [&] {
        std::error_code notYet;
        return std::distance(fs::directory_iterator(destination, notYet), {});
    };
    std::mt19937 random(std::random_device{}());
    int status = 0;
    int killed = 0;
    for (int round = 0; round < 10; ++round) {
        const auto until = copied() + std::uniform_int_distribution(1, 50)(random);
        const auto child = start();
        while (copied() < until && waitpid(child, &status, WNOHANG) == 0)
            usleep(100);
        usleep(std::uniform_int_distribution<useconds_t>(0, 3000)(random));
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
        killed += WIFSIGNALED(status) ? 1 : 0;
    }
    EXPECT_GE(killed, 5) << "some kills may come when all is done";
    waitpid(start(), &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 3) << "done but for the empty file";
    auto wanted = card.photos();
    wanted["<x/>"] = 1;
    EXPECT_EQ(counted(destination), wanted) << "each once, whole, and nothing besides";
    EXPECT_EQ(inLibrary(), 302U);
    std::set<std::string> names;
    for (const auto& [name, bytes] : contents(destination))
        names.insert(fs::path(name).stem());
    EXPECT_EQ(names.size(), 301U) << "all files of a shot have one name";
    EXPECT_EQ(*names.rbegin(), "trip-302") << "numbered as if nothing had been killed; one file is empty";
}

} // namespace korvo
