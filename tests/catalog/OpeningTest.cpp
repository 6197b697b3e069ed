#include "catalog/Meta.h"
#include "catalog/Migration.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

namespace korvo {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> namesIn(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string openingError(const fs::path& library)
{
    try {
        Catalog(library, SystemClock());
    } catch (const DatabaseError& error) {
        return error.what();
    }
    return "opened";
}

constexpr double day = 86400;

} // namespace

TEST(Catalog, makesTheLibraryFolderWithWhatBelongsInIt)
{
    TestLibrary library;
    EXPECT_EQ(namesIn(library.catalog->backupsFolder()).size(), 1U);
    EXPECT_TRUE(fs::is_directory(library.catalog->previewsFolder()));
    EXPECT_EQ(library.catalog->database().scalar("SELECT version FROM schema_info"), currentSchemaVersion);
}

TEST(Catalog, backsUpOnceADayAndKeepsTheSevenNewest)
{
    TestLibrary library;
    const auto path = library.catalog->libraryURL();
    const auto backups = library.catalog->backupsFolder();
    library.photo("a.jpg");
    const auto first = localDay(library.clock.time);
    for (int days = 0; days < 8; ++days) {
        library.catalog = std::make_unique<Catalog>(path, library.clock);
        library.catalog = std::make_unique<Catalog>(path, library.clock);
        library.clock.time += day;
    }
    const auto names = namesIn(backups);
    ASSERT_EQ(names.size(), 7U) << "and nothing unfinished beside them";
    EXPECT_GT(names.front(), "catalog-" + first + ".sqlite");
    Database copy(backups / names.front());
    EXPECT_EQ(copy.scalar("SELECT COUNT(*) FROM photos"), 1)
        << "what was committed to the log only is in the copy";
}

TEST(Catalog, anInterruptedBackupDoesNotCountAsTheDays)
{
    const TemporaryFolder folder;
    const ManualClock clock;
    const auto name = "catalog-" + localDay(clock.time) + ".sqlite";
    for (const auto& abandoned : {name, std::string("catalog-2001-01-01.sqlite")})
        folder.write("Library/Backups/" + abandoned + ".part", "half a copy");
    const Catalog catalog(folder / "Library", clock);
    EXPECT_EQ(namesIn(catalog.backupsFolder()), std::vector{name});
}

TEST(Catalog, aMovedLibraryOpensThoughItsNewPlaceIsInTheCatalogAlready)
{
    TestLibrary library;
    const auto old = library.catalog->libraryURL();
    const auto now = library.folder / "New";
    library.catalog->addFolder(old.native(), 1);
    library.catalog->addFolder(now.native(), 1);
    library.catalog.reset();
    fs::rename(old, now);
    EXPECT_EQ(openingError(now), "opened");
}

TEST(Catalog, followsAMoveOfTheLibraryAndOfNothingElse)
{
    TestLibrary library;
    const auto old = library.catalog->libraryURL();
    struct Case {
        std::string path, moved;
    };
    const auto now = (library.folder / "Moved 100% 'new'").string();
    const std::vector<Case> cases = {{old.string() + "/Originals/a.jpg", now + "/Originals/a.jpg"},
        {old.string() + "2/b.jpg", old.string() + "2/b.jpg"},
        {"/elsewhere/Library/c.jpg", "/elsewhere/Library/c.jpg"},
        {old.string() + "/latin\xE9.jpg", now + "/latin\xE9.jpg"}};
    std::vector<NewPhoto> photos;
    for (const auto& [path, moved] : cases)
        photos.push_back({.path = path});
    library.catalog->addPhotos(photos);
    library.catalog->addFolder(old.string(), 1);
    library.catalog->addFolder(old.string() + "2", 1);
    library.catalog.reset();
    fs::rename(old, now);
    Catalog moved(now, library.clock);
    for (const auto& item : moved.photos(std::nullopt))
        EXPECT_EQ(item.path(), cases[static_cast<std::size_t>(item.id - 1)].moved);
    EXPECT_EQ(moved.tree().folders, (std::vector<FolderRow>{{2, old.string() + "2"}, {1, now}}));
    EXPECT_EQ(readMeta(moved.database(), "library_path"), now);
}

TEST(Catalog, whatCannotBeOpenedStaysAsItWas)
{
    const TemporaryFolder folder;
    const auto text = folder.write("text/catalog.sqlite", std::string(5000, 'x'));
    EXPECT_EQ(openingError(text.parent_path()), "Couldn't open library: file is not a database");
    EXPECT_EQ(namesIn(text.parent_path()), std::vector<std::string>{"catalog.sqlite"});

    const auto later = folder / "later" / "catalog.sqlite";
    fs::create_directories(later.parent_path());
    {
        Database db(later);
        db.exec("CREATE TABLE schema_info (version INTEGER NOT NULL); INSERT INTO schema_info VALUES (15)");
    }
    const auto before = readFile(later);
    EXPECT_NE(openingError(later.parent_path()).find("later version of Korvo (catalog version 15"),
        std::string::npos);
    EXPECT_EQ(readFile(later), before);
    EXPECT_EQ(namesIn(later.parent_path()), std::vector<std::string>{"catalog.sqlite"});
    {
        Database holdsALog(later);
        holdsALog.exec("UPDATE schema_info SET version = 16; INSERT INTO schema_info VALUES (17)");
        fs::copy(later.parent_path(), folder / "crashed");
    }
    const auto crashed = folder / "crashed" / "catalog.sqlite";
    const auto log = readFile(crashed.native() + "-wal");
    EXPECT_NE(openingError(crashed.parent_path()).find("catalog version 16"), std::string::npos);
    EXPECT_EQ(readFile(crashed), before);
    EXPECT_EQ(readFile(crashed.native() + "-wal"), log);
    EXPECT_FALSE(fs::exists(crashed.parent_path() / "Previews"));
    {
        const Database holdsALog(later);
        EXPECT_NE(openingError(later.parent_path()).find("catalog version 16"), std::string::npos);
    }

    const auto file = folder.write("file", "");
    EXPECT_EQ(openingError(file / "Library"),
        "Couldn't open library: Not a directory (" + (file / "Library/Previews").string() + ")");
}

TEST(Catalog, opensInFoldersOfAnyName)
{
    const TemporaryFolder folder;
    const ManualClock clock;
    for (const std::string name : {"what?", "a#b%20c", "it's", "latin\xE9", "桜 🌸"}) {
        SCOPED_TRACE(name);
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(openingError(folder / name), "opened");
        EXPECT_TRUE(fs::exists(folder / name / "catalog.sqlite"));
    }
}

/// The exit code of a process that tries; what went wrong goes to its errors.
int opensHere(const fs::path& library)
{
    const auto error = openingError(library);
    if (error == "opened")
        return 0;
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
}

TEST(Catalog, severalProcessesMayOpenANewLibraryAtOnce)
{
    const TemporaryFolder folder;
    std::vector<pid_t> processes;
    for (int i = 0; i < 4; ++i)
        if (const pid_t process = fork())
            processes.push_back(process);
        else
            _exit(opensHere(folder / "Library"));
    for (const pid_t process : processes) {
        int status = -1;
        waitpid(process, &status, 0);
        EXPECT_EQ(status, 0);
    }
    Catalog catalog(folder / "Library", SystemClock());
    EXPECT_EQ(catalog.database().scalar("SELECT COUNT(*) FROM schema_info"), 1);
    EXPECT_EQ(namesIn(catalog.backupsFolder()).size(), 1U) << "and nothing unfinished beside it";
}

TEST(Catalog, aReaderHoldsUpNoBackupAndHidesNothingFromIt)
{
    TestLibrary library;
    const auto path = library.catalog->libraryURL();
    library.photo("a.jpg");
    Database reader(path / "catalog.sqlite");
    reader.exec("BEGIN");
    EXPECT_EQ(reader.scalar("SELECT COUNT(*) FROM photos"), 1);
    library.photo("b.jpg");
    library.clock.time += day;
    const Catalog another(path, library.clock);
    Database copy(another.backupsFolder() / ("catalog-" + localDay(library.clock.time) + ".sqlite"));
    EXPECT_EQ(copy.scalar("SELECT COUNT(*) FROM photos"), 2);
    EXPECT_EQ(reader.scalar("SELECT COUNT(*) FROM photos"), 1) << "it goes on reading what it read";
}

TEST(Catalog, aReadOnlyDiskIsNamed)
{
    const TemporaryFolder folder;
    const auto disk = folder / "disk";
    fs::create_directory(disk);
    if (mount("none", disk.c_str(), "tmpfs", 0, "size=2m") != 0)
        GTEST_SKIP() << "a disk cannot be mounted here: " << std::strerror(errno);
    EXPECT_EQ(openingError(disk / "Library"), "opened");
    EXPECT_EQ(mount("none", disk.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, ""), 0);
    EXPECT_EQ(openingError(disk / "Library"),
        "Couldn't open library: Read-only file system (" + (disk / "Library").string() + ")");
    EXPECT_EQ(umount(disk.c_str()), 0);
}

TEST(Catalog, aFullDiskLosesNothingAndSaysSo)
{
    const TemporaryFolder folder;
    const auto disk = folder / "disk";
    fs::create_directory(disk);
    if (mount("none", disk.c_str(), "tmpfs", 0, "size=2m") != 0)
        GTEST_SKIP() << "a small disk cannot be mounted here: " << std::strerror(errno);
    constexpr std::size_t batch = 500;
    std::size_t taken = 0;
    const auto add = [&](Catalog& catalog) {
        std::vector<NewPhoto> photos(batch);
        for (std::size_t i = 0; i < batch; ++i)
            photos[i].path = "/photos/" + std::to_string(taken + i) + ".jpg";
        catalog.addPhotos(photos);
        taken += batch;
    };
    const auto held = [](Catalog& catalog) {
        EXPECT_EQ(catalog.database().query("PRAGMA integrity_check").size(), 1U);
        return static_cast<std::size_t>(catalog.database().scalar("SELECT COUNT(*) FROM photos"));
    };
    folder.write("disk/other", std::string(1 << 19, 'x'));
    {
        Catalog catalog(disk / "Library", ManualClock());
        std::string reason;
        while (reason.empty())
            try {
                add(catalog);
            } catch (const DatabaseError& error) {
                reason = error.what();
            }
        EXPECT_NE(reason.find("database or disk is full"), std::string::npos) << reason;
        EXPECT_GT(taken, 0U);
        EXPECT_EQ(held(catalog), taken) << "whole batches";
    }
    fs::remove(disk / "other");
    {
        Catalog catalog(disk / "Library", ManualClock());
        EXPECT_EQ(held(catalog), taken);
        add(catalog);
        EXPECT_EQ(held(catalog), taken);
    }
    EXPECT_EQ(umount(disk.c_str()), 0);
}

TEST(Catalog, aLockedLibraryIsWaitedForAndThenReported)
{
    TestLibrary library;
    Database other(library.catalog->libraryURL() / "catalog.sqlite");
    const auto photo = library.photo("a.jpg");
    {
        const Transaction brief(other);
        std::thread writer([&] { library.catalog->setRating(only(photo), 3); });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        other.exec("ROLLBACK; BEGIN"); // lets the writer through
        writer.join();
    }
    EXPECT_EQ(library.item(photo).rating, 3);

    const Transaction held(other);
    EXPECT_THROW(Transaction(library.catalog->database(), std::chrono::milliseconds(10)), DatabaseError);
    EXPECT_EQ(library.item(photo).rating, 3) << "reading goes on beside a writer";
}

} // namespace korvo
