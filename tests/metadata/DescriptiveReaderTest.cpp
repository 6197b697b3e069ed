#include "metadata/DescriptiveReader.h"

#include "metadata/ExifReader.h"
#include "metadata/MetadataError.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

std::filesystem::path fixture(const std::string& name)
{
    return std::filesystem::path(KORVO_TEST_DATA) / "metadata" / name;
}

} // namespace

TEST(DescriptiveReader, prefersXmpToIptcToExifAndReadsEachEncoding)
{
    struct Case {
        const char* file;
        DescriptiveFields fields;
    };
    for (const auto& [file, fields] : {
             Case{"plain.jpg", {}},
             {"all-sources.jpg",
                 {"xmp-alt", "xmp-title", "xmp-caption", {"xmp-1", "xmp-2"}, "xmp-creator", "xmp-rights"}},
             {"iptc-latin.jpg", {"", "Café ƒ", "Zürich – €5", {"été", "Größe"}, "Jürgen", "© Jürgen"}},
             {"iptc-utf8.jpg", {"", "桜 🌸", "", {"a", "b"}, "Ana Müller", ""}},
             {"exif-only.jpg", {"", "", "", {}, "Ana Müller", "Ana\nThe Editor"}},
             {"languages.jpg", {"", "Default", "Français", {"one", "two"}, "", "<&> \"quoted\""}},
         })
        EXPECT_EQ(readDescriptive(fixture(file)), fields) << file;
}

TEST(DescriptiveReader, saysWhichFileCannotBeReadAndWhy)
{
    const TemporaryFolder folder;
    const auto failure = [](const std::filesystem::path& file) -> std::string {
        try {
            readDescriptive(file);
            return "none";
        } catch (const MetadataError& error) {
            return error.what();
        }
    };
    EXPECT_EQ(failure(folder / "gone.jpg"), "gone.jpg can't be opened: No such file or directory");
    EXPECT_EQ(failure(folder.path()).substr(folder.path().filename().string().size()),
        " can't be read: Is a directory");
    EXPECT_EQ(failure(folder.write("empty.jpg", "")), "none");
    EXPECT_EQ(readExif(folder / "gone.jpg"), std::nullopt);
}

} // namespace korvo
