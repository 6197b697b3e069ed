#include "base/Json.h"
#include "metadata/DescriptiveReader.h"
#include "metadata/ExifReader.h"
#include "tests/app/KorvoProgram.h"
#include "tests/support/ScopedVariable.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace korvo {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// The program with copies of one fixture as its photos.
class MetadataCommands : public ::testing::Test, protected KorvoProgram {
protected:
    void SetUp() override { run("create " + (folder / "Library").string()); }

    void add(const std::string& name, const std::string& fixture, const char* option = "")
    {
        folder.write(name, readFile(data(fixture)));
        ASSERT_EQ(run("add " + (folder / name).string() + " " + option).exitCode, 0);
    }

    static void needExifTool()
    {
        if (std::system("exiftool -ver >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "exiftool is not installed";
    }

    static std::string data(const std::string& name)
    {
        return std::string(KORVO_TEST_DATA) + "/metadata/" + name;
    }

    bool isDirty(int id) const
    {
        return json("show " + std::to_string(id)).find("\"dirty\":true") != std::string::npos;
    }

    ScopedVariable zone{"TZ", "UTC"};
};

} // namespace

TEST_F(MetadataCommands, infoTellsWhatAFileSaysWithoutALibrary)
{
    EXPECT_EQ(json("--library /nowhere info " + data("camera.jpg")),
        R"({"camera":"Canon EOS R5","lens":"RF85mm F1.2 L USM","exposure":"1/250 s","aperture":"ƒ/2.8",)"
        R"("focalLength":"85 mm","captureDate":"2024-05-01 10:00:00","captureTimestamp":1714557600,)"
        R"("pixelSize":"16 × 12","coordinate":{"latitude":48.8584,"longitude":2.2944999999999998},"isoValue":400,)"
        R"("focalValue":85,"apertureValue":2.8,"shutterSeconds":0.004})"
        "\n");
    EXPECT_NE(run("info " + data("camera.jpg")).out.find("exposure      1/250 s\n"), std::string::npos);
    EXPECT_EQ(run("info " + folder.write("x.jpg", "x").string()).exitCode, 1) << "it says nothing";
    const auto missing = run("info " + (folder / "none.jpg").string());
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err, "korvo: none.jpg can't be opened: No such file or directory\n");
}

TEST_F(MetadataCommands, readReadsWhatIsNotReadYet)
{
    add("a.jpg", "camera.jpg", "--no-read");
    add("b.jpg", "camera.jpg");
    EXPECT_EQ(json("show 1").find("\"camera\""), std::string::npos);
    EXPECT_EQ(json("read"), "{\"camera\":1,\"positions\":1}\n");
    EXPECT_EQ(json("read"), "{\"camera\":0,\"positions\":0}\n");
    const auto shown = json("show 1");
    const JsonDocument document(shown);
    EXPECT_EQ(document.root().member("camera").text(), "Canon EOS R5");
    EXPECT_EQ(document.root().member("captureDate").number(), 1714557600);
    EXPECT_EQ(document.root().member("latitude").number(), 48.8584);
}

TEST_F(MetadataCommands, saveWritesWhatWaitsAndRevertBringsBackWhatWasFound)
{
    needExifTool();
    add("a.jpg", "all-sources.jpg");
    add("gone.jpg", "all-sources.jpg");
    add("A.aplibrary/c.jpg", "all-sources.jpg");
    add("M.migratedaplibrary/d.jpg", "all-sources.jpg");
    const auto before = readDescriptive(folder / "a.jpg");
    run("set --title new --keywords 'b, a' --source all");
    EXPECT_FALSE(isDirty(3) || isDirty(4)) << "what is never written does not wait for it";
    fs::remove(folder / "gone.jpg");
    const auto saved = run("--json save");
    EXPECT_EQ(saved.exitCode, 3);
    EXPECT_EQ(saved.out, "{\"saved\":1,\"failed\":1}\n");
    EXPECT_TRUE(saved.err.starts_with((folder / "gone.jpg").string() + ": ")) << saved.err;
    EXPECT_TRUE(saved.err.ends_with("1 failed\n")) << saved.err;
    EXPECT_EQ(readDescriptive(folder / "a.jpg").title, "new");
    EXPECT_FALSE(isDirty(1));
    EXPECT_TRUE(isDirty(2));
    EXPECT_EQ(readFile(folder / "A.aplibrary/c.jpg"), readFile(data("all-sources.jpg")));

    run("set --title newer 1");
    EXPECT_EQ(run("revert 1 3").out, "Reverted metadata on 1 photo.\n");
    EXPECT_EQ(readDescriptive(folder / "a.jpg"), before);
    EXPECT_FALSE(isDirty(1));
    const auto refused = run("revert 3");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.starts_with("korvo: These are in an Aperture library.")) << refused.err;
}

TEST_F(MetadataCommands, datesAndPositionsChangeInCatalogAndFile)
{
    needExifTool();
    add("a.jpg", "camera.jpg");
    for (const char* wrong :
        {"shift-dates 1e300 1", "shift-dates soon 1", "locate 91 0 1", "locate 1 1", "locate"})
        EXPECT_EQ(run(wrong).exitCode, 2) << wrong;
    EXPECT_EQ(json("shift-dates -90 1"), "{\"shifted\":1,\"failed\":0}\n");
    EXPECT_EQ(readExif(folder / "a.jpg")->captureTimestamp, 1714557510);
    const auto shifted = json("show 1");
    EXPECT_EQ(JsonDocument(shifted).root().member("captureDate").number(), 1714557510) << shifted;
    EXPECT_EQ(run("locate -33.5 18.25 1").out, "Located 1 photo.\n");
    EXPECT_EQ(readGPS(folder / "a.jpg"), (Coordinate{-33.5, 18.25}));
    EXPECT_EQ(json("locate --clear 1 99"), "{\"located\":1,\"failed\":0}\n");
    EXPECT_FALSE(readGPS(folder / "a.jpg"));
    EXPECT_EQ(json("show 1").find("latitude"), std::string::npos);
}

TEST_F(MetadataCommands, saveGoesOnAfterItWasKilled)
{
    needExifTool();
    constexpr int count = 50;
    const auto contents = readFile(data("all-sources.jpg"));
    const auto path = [&](int i) { return folder / "photos" / (std::to_string(i) + ".jpg"); };
    const auto isNew = [&](int i) { return readFile(path(i)) != contents; };
    for (int i = 1; i <= count; ++i)
        folder.write("photos/" + std::to_string(i) + ".jpg", contents);
    run("add " + (folder / "photos").string());
    run("set --title new --source all");

    const auto program = start("save");
    const auto written = [&] {
        int files = 0;
        for (int i = 1; i <= count; ++i)
            files += isNew(i);
        return files;
    };
    for (int looks = 0; looks < 3000 && written() < 5; ++looks)
        std::this_thread::sleep_for(10ms);
    ASSERT_EQ(kill(program, SIGKILL), 0) << "it was done before it could be killed";
    while (kill(program, 0) == 0)
        std::this_thread::sleep_for(5ms);

    int waiting = 0;
    const auto lines = json("list");
    for (std::size_t at = 0; at < lines.size(); at = lines.find('\n', at) + 1) {
        const auto line = lines.substr(at, lines.find('\n', at) - at);
        const JsonDocument document(line);
        const fs::path file = std::string(document.root().member("path").text());
        const bool dirty = line.find("\"dirty\":true") != std::string::npos;
        waiting += dirty;
        EXPECT_EQ(readDescriptive(file).title, readFile(file) == contents ? "xmp-title" : "new")
            << "old or new";
        EXPECT_TRUE(dirty || readFile(file) != contents);
    }
    EXPECT_GT(waiting, 0);
    EXPECT_EQ(json("save"), "{\"saved\":" + std::to_string(waiting) + ",\"failed\":0}\n");
    EXPECT_EQ(written(), count);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "photos"), {}), count)
        << "nothing is left behind";
    run("revert --source all");
    EXPECT_EQ(readDescriptive(path(1)).title, "xmp-title") << "what was found is kept from before the kill";
}

} // namespace korvo
