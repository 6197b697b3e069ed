#include "metadata/exiftool/ExifTool.h"

#include "metadata/ExifReader.h"
#include "metadata/exiftool/ExifToolRecords.h"
#include "metadata/exiftool/KeptExifTool.h"
#include "tests/metadata/ExifTool.h"
#include "tests/metadata/FakeTool.h"

#include <gtest/gtest.h>

#include <thread>

namespace korvo {

namespace {

using Arguments = ExifToolArguments;

const PhotoMetadata awkward{"ALT\nof \"two\" lines\r\n\\n $x @y", "-title", "  led and trailed  ",
    "a, b c, d|e", "# 🌸 <é> 'q' `x`", "x" + std::string(60'000, 'y')};

std::string failureOf(const std::function<void()>& work)
{
    try {
        work();
        return "none";
    } catch (const ExifToolError& error) {
        return error.what();
    }
}

} // namespace

TEST(ExifToolArguments, areThoseThatTheToolIsKnownToTake)
{
    EXPECT_EQ(readArguments(std::vector<std::filesystem::path>{"/a.jpg", "-b.jpg"}),
        (Arguments{"-j", "-q", "-m", "-G1", "-XMP-iptcCore:AltTextAccessibility", "-XMP-dc:Title",
            "-IPTC:ObjectName", "-XMP-dc:Description", "-IPTC:Caption-Abstract", "-XMP-dc:Subject",
            "-IPTC:Keywords", "-XMP-dc:Creator", "-IPTC:By-line", "-IFD0:Artist", "-XMP-dc:Rights",
            "-IPTC:CopyrightNotice", "-IFD0:Copyright", "/a.jpg", "./-b.jpg"}));
    EXPECT_EQ(writeArguments({"alt", "T", "", " k,l ,, m", "C", "R"}, "/a.jpg"),
        (Arguments{"-overwrite_original", "-q", "-m", "-charset", "iptc=utf8", "-sep", ", ",
            "-codedcharacterset=utf8", "-XMP-iptcCore:AltTextAccessibility=alt", "-XMP-dc:Title=T",
            "-IPTC:ObjectName=T", "-XMP-dc:Description=", "-IPTC:Caption-Abstract=",
            "-XMP-dc:Subject=k, l, m", "-IPTC:Keywords=k, l, m", "-XMP-dc:Creator=C", "-IPTC:By-line=C",
            "-IFD0:Artist=C", "-XMP-dc:Rights=R", "-IPTC:CopyrightNotice=R", "-IFD0:Copyright=R", "/a.jpg"}));
    for (const auto& [seconds, text] : {std::pair(93784.0, "-AllDates+=0:0:1 2:3:4"),
             {-90.0, "-AllDates-=0:0:0 0:1:30"}, {0.4, "-AllDates+=0:0:0 0:0:0"}})
        EXPECT_EQ(shiftDatesArguments(seconds, "/a.jpg", {}),
            (Arguments{"-overwrite_original", "-q", "-m", text, "/a.jpg"}));
    EXPECT_EQ(writeGPSArguments({48.8584, -2.5}, "/a.jpg", {}),
        (Arguments{"-overwrite_original", "-q", "-m", "-GPSLatitude=48.8584", "-GPSLatitudeRef=N",
            "-GPSLongitude=2.5", "-GPSLongitudeRef=W", "/a.jpg"}));
    EXPECT_EQ(stripGPSArguments("/a.jpg", {}),
        (Arguments{"-overwrite_original", "-q", "-m", "-GPS:all=", "/a.jpg"}));
    EXPECT_EQ(exportedExifArguments("/a.cr2", "/b.jpg", 30, 20, {Position::strip, {}}),
        (Arguments{"-overwrite_original", "-q", "-m", "-TagsFromFile", "/a.cr2", "-EXIF:all",
            "-IFD1:all=", "-Orientation#=1", "-ColorSpace#=1", "-ExifImageWidth=30", "-ExifImageHeight=20",
            "-GPS:all=", "/b.jpg"}));
}

TEST(ExifToolRecords, takeEachFieldFromTheFirstKeyThatHoldsOne)
{
    const auto records = parseRecords(R"([{"SourceFile":"/a","XMP-dc:Title":007.50,"IPTC:ObjectName":"no",
        "XMP-dc:Description":"","IPTC:Caption-Abstract":"q\"}, {","XMP-dc:Subject":" a, ,b","XMP-dc:Creator":["x","y"],
        "IFD0:Copyright":true},{"SourceFile":12,"IPTC:Keywords":["a, b"," c ",3]},{"IPTC:Keywords":"x"}])");
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(descriptiveFields(records[0]), (PhotoMetadata{"", "007.50", "q\"}, {", "a, b", "x", "true"}));
    EXPECT_EQ(records[1].sourceFile, "12");
    EXPECT_EQ(descriptiveFields(records[1]).keywords, "a, b, c, 3");
    EXPECT_TRUE(parseRecords(" \n").empty());
}

TEST(ExifTool, isFoundInTheApplicationThenWhereItIsInstalledThenOnThePath)
{
    const TemporaryFolder folder;
    const auto make = [&](const char* name) {
        const auto file = folder.write(name, "#!/bin/sh\n");
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
        return file;
    };
    folder.write("a/exiftool", "not executable");
    const auto onPath = make("path/exiftool");
    ExifToolPlaces places{
        folder / "none", {folder / "a/exiftool"}, "relative::" + (folder / "path").string()};
    EXPECT_EQ(locateExifTool(places), onPath);
    places.installed.push_back(make("b/exiftool"));
    EXPECT_EQ(locateExifTool(places), folder / "b/exiftool");
    places.bundled = make("bundled/exiftool").parent_path();
    EXPECT_EQ(locateExifTool(places), folder / "bundled/exiftool");
    places.bundled = make("single");
    EXPECT_EQ(locateExifTool(places), folder / "single");
    const FakeTool missing;
    EXPECT_EQ(failureOf([&] { missing.tool.run({"-ver"}, {}); }),
        "exiftool not found. Install it (brew install exiftool) or bundle it in the app.");
}

TEST(ExifTool, saysWhatTheToolSays)
{
    const std::string_view megabyte = "head -c 1000000 /dev/zero | tr '\\0' w >&2; echo out; ";
    EXPECT_EQ(FakeTool(std::string(megabyte) + "exit 0").tool.run({}, {}), "out\n");
    EXPECT_EQ(
        failureOf([&] { FakeTool(std::string(megabyte) + "exit 1").tool.run({}, {}); }).size(), 1'000'000U);
    EXPECT_EQ(
        failureOf([] { FakeTool("printf ' bad \\377\\n\\n' >&2; exit 2").tool.run({}, {}); }), "bad \uFFFD");
    EXPECT_EQ(failureOf([] { FakeTool("kill -9 $$").tool.run({}, {}); }), "exiftool failed.");
    EXPECT_EQ(FakeTool("printf '\\377'").tool.run({}, {}), "");
}

TEST(ExifTool, keepsEveryCharacterInEitherWayOfCalling)
{
    if (!hasExifTool())
        GTEST_SKIP() << "exiftool is not installed";
    const TemporaryFolder folder;
    const FakeTool real(FakeTool::Real{});
    KeptExifTool kept(real.tool);
    const RunExifTool ways[] = {[&](const Arguments& arguments) { return real.tool.run(arguments, {}); },
        [&](const Arguments& arguments) { return kept.run(arguments, {}); }};
    PhotoMetadata longEmoji{.caption = "🌸", .copyright = "plain"};
    std::string flowers;
    for (int i = 0; i < 60'000; ++i)
        flowers += "🌸";
    longEmoji.caption = SharedText(flowers);
    PhotoMetadata longAwkward;
    longAwkward.caption = SharedText(" $@\n&amp; " + flowers); // longer than an argument may be
    PhotoMetadata withoutDollar = awkward;
    withoutDollar.altText = "ALT\nof \"two\" lines\r\n\\n \\";
    int written = 0;
    for (const auto& metadata : {awkward, withoutDollar, longEmoji, longAwkward, PhotoMetadata()}) {
        std::string bytes[2];
        for (int way = 0; way < 2; ++way) {
            const auto file = folder.write("-n\xff\n" + std::to_string(written) + ".jpg",
                readFile(std::string(KORVO_TEST_DATA) + "/metadata/all-sources.jpg"));
            ASSERT_EQ(failureOf([&] { ways[way](writeArguments(metadata, file)); }), "none") << written;
            const auto records = parseRecords(ways[way](readArguments(std::span(&file, 1))));
            ASSERT_EQ(records.size(), 1U);
            EXPECT_EQ(descriptiveFields(records.front()), metadata) << written << " " << way;
            bytes[way] = readFile(file);
        }
        EXPECT_EQ(bytes[0], bytes[1]) << "both ways give the same file";
        ++written;
    }
    EXPECT_NE(
        failureOf([&] { kept.run(stripGPSArguments(folder / "gone.jpg", {}), {}); }).find("File not found"),
        std::string::npos);
}

TEST(ExifTool, copiesFromFilesWhoseNamesLookLikePatterns)
{
    if (!hasExifTool())
        GTEST_SKIP() << "exiftool is not installed";
    const TemporaryFolder folder;
    const FakeTool real(FakeTool::Real{});
    const auto data = std::filesystem::path(KORVO_TEST_DATA) / "metadata";
    const auto source = folder.write("50%done/%f.%e%%d%.jpg", readFile(data / "camera.jpg"));
    const auto copy = folder.write("copy.jpg", readFile(data / "plain.jpg"));
    real.tool.run(exportedExifArguments(source, copy, 4, 3, {}), {});
    EXPECT_EQ(readExif(copy)->camera, readExif(source)->camera);
}

TEST(KeptExifTool, goesOnWithSingleProcessesOnceTheKeptOneDies)
{
    const TemporaryFolder folder;
    const auto starts = folder / "starts";
    const FakeTool fake("echo $1 >> '" + starts.string() + "'; test $1 = -stay_open && exit 1; echo single");
    KeptExifTool kept(fake.tool);
    EXPECT_EQ(kept.run({"a"}, {}), "single\n");
    EXPECT_EQ(kept.run({"b"}, {}), "single\n");
    EXPECT_EQ(readFile(starts), "-stay_open\na\nb\n");
}

TEST(KeptExifTool, stopsAHangingTool)
{
    const TemporaryFolder folder;
    const auto started = folder / "started";
    const FakeTool hanging("touch '" + started.string() + "'; sleep 1000");
    KeptExifTool kept(hanging.tool);
    std::stop_source stop;
    const std::jthread stopper([&] {
        while (!std::filesystem::exists(started))
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        stop.request_stop();
    });
    EXPECT_EQ(failureOf([&] { kept.run({"a"}, stop.get_token()); }), "The program was stopped.");
}

} // namespace korvo
