#include "metadata/DescriptiveReader.h"

#include "metadata/ExifReader.h"
#include "metadata/MetadataError.h"
#include "tests/metadata/Fixture.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

/// An APP1 segment of a JPEG file.
std::string app1(const std::string& payload)
{
    const auto length = payload.size() + 2;
    return std::string{'\xFF', '\xE1', static_cast<char>(length >> 8), static_cast<char>(length)} + payload;
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
             {"odd-iptc-twice.jpg", {"", "second", "caption", {}, "one", ""}},
             {"odd-iptc-latin1.jpg", {"", "Zürich €", "", {}, "", ""}},
             {"odd-padded.jpg", {"", "", "", {}, "Ana", "\nEditor"}},
             {"profiles.png", {"", "Harbour", "", {"sea", "ships"}, "", ""}},
             {"canon.cr3", {"", "Harbour", "", {}, "", ""}},
             {"camera.heic", {"", "Harbour", "", {}, "", ""}},
             {"camera.webp", {"", "Harbour", "", {}, "", ""}},
             {"titled.gif", {"", "Harbour", "", {}, "", ""}},
             {"camera.tif", {"", "Harbour", "", {"sea", "ships"}, "", ""}},
             {"languages.jpg", {"", "Default", "Français", {"one", "two"}, "", "<&> \"quoted\""}},
         })
        EXPECT_EQ(readDescriptive(fixture(file)), fields) << file;
}

TEST(DescriptiveReader, putsLongXmpTogetherFromItsParts)
{
    const std::string guid = "0123456789ABCDEF0123456789ABCDEF", caption(70'000, 'x');
    const auto description = [](const std::string& properties) {
        return "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
               "xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:xmpNote='http://ns.adobe.com/xmp/note/' "
            + properties + "</rdf:Description></rdf:RDF>";
    };
    const auto main = description("xmpNote:HasExtendedXMP='" + guid + "'><dc:title>Long</dc:title>");
    const auto extension = description("><dc:description>" + caption + "</dc:description>");
    const auto part = [&](const std::string& id, std::size_t begin, std::size_t end) {
        const auto number = [](std::size_t value) {
            return std::string{static_cast<char>(value >> 24), static_cast<char>(value >> 16),
                static_cast<char>(value >> 8), static_cast<char>(value)};
        };
        return app1(std::string("http://ns.adobe.com/xmp/extension/\0", 35) + id + number(extension.size())
            + number(begin) + extension.substr(begin, end - begin));
    };
    const TemporaryFolder folder;
    const auto file = folder.write("long.jpg",
        "\xFF\xD8" + app1(std::string("http://ns.adobe.com/xap/1.0/\0", 29) + main)
            + part(guid, 40'000, extension.size()) + part(guid, 0, 40'000) + "\xFF\xD9");
    const auto fields = readDescriptive(file);
    EXPECT_EQ(fields.title, "Long");
    EXPECT_EQ(fields.caption, caption);
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
