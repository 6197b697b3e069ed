#include "catalog/HealthCheck.h"

#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvo {

namespace {

bool finds(const HealthReport& report, const std::string& text)
{
    return std::ranges::any_of(
        report.problems, [&](const std::string& problem) { return problem.find(text) != problem.npos; });
}

/// A library with three photos that are there.
struct SoundLibrary : TestLibrary {
    SoundLibrary()
    {
        for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) {
            const NewPhoto photo{.path = folder.write(std::string("photos/") + name, "x")};
            catalog->addPhoto(photo);
        }
    }

    HealthReport check()
    {
        return checkHealth(*catalog, [](std::size_t) { return true; });
    }
};

} // namespace

TEST(HealthCheck, namesEachThingThatIsWrongAndChangesNothing)
{
    SoundLibrary library;
    EXPECT_TRUE(library.check().problems.empty());
    EXPECT_EQ(library.check().photos, 3U);

    std::filesystem::remove(library.folder / "photos/a.jpg");
    auto& database = library.catalog->database();
    database.exec("PRAGMA foreign_keys = OFF; UPDATE photos SET filename = 'other.jpg' WHERE id = 2;"
                  "UPDATE photos SET path = 'c.jpg', project_id = 77 WHERE id = 3; PRAGMA foreign_keys = ON");
    std::filesystem::remove_all(library.catalog->backupsFolder());
    const auto before = contentOf(*library.catalog);
    const auto report = library.check();
    for (const char* problem : {"1  ", "a.jpg: missing", "b.jpg: stored under the other name other.jpg",
             "3  c.jpg: not an absolute path", "row 3 of photos refers to a row of projects",
             "no backup of the catalog in "})
        EXPECT_TRUE(finds(report, problem)) << problem;
    EXPECT_EQ(report.problems.size(), 5U);
    EXPECT_EQ(contentOf(*library.catalog), before);
}

TEST(HealthCheck, stopsWhereItIsTold)
{
    SoundLibrary library;
    const auto report = checkHealth(*library.catalog, [](std::size_t done) { return done < 2; });
    EXPECT_TRUE(report.stopped);
    EXPECT_EQ(report.photos, 2U);
}

} // namespace korvo
