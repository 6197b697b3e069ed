#include "imports/Naming.h"
#include "base/Json.h"
#include "imports/NamingPreset.h"
#include "platform/FileDefaults.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

constexpr UnixTime mayNoon = 1'714'564'800; // 2024-05-01 12:00 UTC, the same day in most zones

std::string times(int count, std::string_view text)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

std::vector<std::string> patterns(const std::vector<NamingPreset>& presets)
{
    std::vector<std::string> all;
    for (const auto& preset : presets)
        all.push_back(preset.pattern);
    return all;
}

} // namespace

TEST(Naming, expandsTokensInTheirOrderAndKeepsAllOtherText)
{
    const auto day = localDay(mayNoon);
    struct Case {
        std::string pattern, name, title, expected;
        NamingPlace place = {1, 1};
    };
    for (const auto& [pattern, name, title, expected, place] : {
             Case{"{seq}-{name}", "DSC_1234", "", "0007-DSC_1234", {7, 1500}},
             {"{seq}", "a", "", "001", {1, 12}},
             {"{seq}{seq}", "a", "", "999999", {999, 999}},
             {"{seq}", "a", "", "0999", {999, 1000}},
             {"{title}", "a", "Paris: day 1/2", "Paris- day 1-2"},
             {"{title}", "a", "", "a"},
             {"{title}", "a", "{seq} {name} {date}", "{seq} {name} {date}"},
             {"{name}", "IMG{date}", "", "IMG" + day},
             {"{name}", "{seq}{title}", "T", "012T", {12, 12}},
             {"{date} {name}", "a", "", day + " a"},
             {"{foo}{Name}{", "a", "", "{foo}{Name}{"},
             {"{na{seq}me}", "a", "", "{na001me}"},
             {"   ", "a", "", "a"},
             {"", "a", "", "a"},
             {" \t{name}\n ", "a", "", "a\n"},
             {"a:b/c", "a", "", "a-b-c"},
         }) {
        SCOPED_TRACE(pattern);
        EXPECT_EQ(baseName(NamingFacts{name, title, mayNoon}, pattern, place), expected);
    }
}

TEST(Naming, cutsLongNamesBetweenCharactersAndSparesTheNumber)
{
    const NamingFacts facts{times(200, "n"), times(200, "ü"), mayNoon};
    struct Case {
        std::string pattern, expected;
    };
    for (const auto& [pattern, expected] : {
             Case{"{title}", times(127, "ü")},
             {"{seq} {title}", "001 " + times(125, "ü")},
             {"{title} {seq}", times(126, "ü") + "001"},
             {"{title} {seq} {name}", times(25, "ü") + "001 " + times(200, "n")},
             {times(255, " ") + "{name}", facts.name},
             {times(100, " ") + "{name}" + times(100, " "), facts.name},
             {times(300, "x"), times(255, "x")},
         }) {
        SCOPED_TRACE(pattern);
        EXPECT_EQ(baseName(facts, pattern, {1, 9}), expected);
    }
    EXPECT_EQ(baseName(facts, "{title}", {1, 9}, 4), "üü");
    EXPECT_EQ(baseName(facts, " ", {1, 9}, 4), "nnnn");
}

TEST(Naming, aPhotoIsNamedByItsFileAndTitle)
{
    const TemporaryFolder folder;
    PhotoItem photo;
    photo.folder = SharedText(folder.path().native());
    photo.filename = SharedText("IMG_0042.tar.CR3");
    photo.metadata.title = SharedText("T");
    EXPECT_EQ(
        baseName(photo, "{date} {name} {title}", 1, 1), localDay(SystemClock().now()) + " IMG_0042.tar T")
        << "a file that is gone is dated today";
    const auto file = folder.write("IMG_0042.tar.CR3", "");
    std::filesystem::last_write_time(file,
        std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(1'714'564'800))));
    EXPECT_EQ(baseName(photo, "{date}", 1, 1), localDay(mayNoon));
}

TEST(NamingPreset, loadsWhatWasSavedAndElseTheDefaults)
{
    const std::vector<std::string> standard
        = {"{name}", "{name}-web", "{seq}-{name}", "{date} {name}", "{title}"};
    const TemporaryFolder folder;
    FileDefaults defaults(folder.path());
    EXPECT_EQ(patterns(NamingPreset::load(defaults)), standard);
    const std::vector<NamingPreset> own = {NamingPreset::make("New Preset", "{name} \"x\"")};
    NamingPreset::save(own, defaults);
    EXPECT_EQ(NamingPreset::load(defaults), own);
    for (const char* stored : {"[]", "{}", "[{\"name\":\"x\"}]", "\xff"}) {
        SCOPED_TRACE(stored);
        defaults.set("korvo_naming_presets", stored);
        EXPECT_EQ(patterns(NamingPreset::load(defaults)), standard);
        EXPECT_EQ(defaults.get("korvo_naming_presets"), stored) << "bad data stays until the next save";
    }
    EXPECT_NE(NamingPreset::defaults()[0].id, NamingPreset::defaults()[0].id);
}

} // namespace korvo
