#include "metadata/Xmp.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace korvo {

namespace {

constexpr auto dublinCore = "xmlns:dc='http://purl.org/dc/elements/1.1/'";

DescriptiveFields read(std::string_view packet)
{
    return readXmp(Bytes(packet));
}

/// A packet with these attributes and properties of its only description.
std::string packet(std::string_view attributes, std::string_view properties)
{
    return fmt::format(
        "<?xpacket begin='\uFEFF' id='W5M0MpCehiHzreSzNTczkc9d'?><x:xmpmeta xmlns:x='adobe:ns:meta/'>"
        "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
        "<rdf:Description rdf:about='' {}>{}</rdf:Description></rdf:RDF></x:xmpmeta>\n"
        "<?xpacket end='w'?>",
        attributes, properties);
}

std::string inAlternatives(std::string_view items)
{
    return fmt::format("<dc:title><rdf:Alt>{}</rdf:Alt></dc:title>", items);
}

} // namespace

TEST(Xmp, readsAPosition)
{
    const std::string exif = "xmlns:exif='http://ns.adobe.com/exif/1.0/'";
    const auto at = [&](std::string_view latitude, std::string_view longitude) {
        return fmt::format("{} exif:GPSLatitude='{}' exif:GPSLongitude='{}'", exif, latitude, longitude);
    };
    for (const auto& [attributes, properties, expected] :
        {
            std::tuple(at("33,51.6S", "70,30.0W"), "", std::optional(Coordinate{-33.86, -70.5})),
            {at("33,51,36N", "70,30,0E"), "", Coordinate{33.86, 70.5}},
            {exif, "<exif:GPSLongitude>70,30.0W</exif:GPSLongitude><exif:GPSLatitude>0,0N</exif:GPSLatitude>",
                Coordinate{0, -70.5}},
            {at("33,51.6", "70,30.0W"), "", {}},
            {at("91,0N", "70,30.0W"), "", {}},
            {at("33,x0N", "70,30.0W"), "", {}},
            {at("", "70,30.0W"), "", {}},
            {"xmlns:exif='http://example.org/' exif:GPSLatitude='1,0N' exif:GPSLongitude='1,0E'", "", {}},
        }) {
        const auto position = readXmpPosition(Bytes(std::string_view(packet(attributes, properties))));
        EXPECT_EQ(position.has_value(), expected.has_value()) << attributes;
        EXPECT_TRUE(!expected || !position || isSamePlace(*position, *expected)) << attributes;
    }
}

TEST(Xmp, readsATitleInEveryWayItMayBeWritten)
{
    struct Case {
        const char* what;
        std::string attributes, properties, title;
    };
    const std::string dc = dublinCore;
    for (const auto& [what, attributes, properties, title] : {
             Case{"default language", dc,
                 inAlternatives(
                     "<rdf:li xml:lang='de'>Hafen</rdf:li><rdf:li xml:lang='X-Default'>Harbour</rdf:li>"),
                 "Harbour"},
             {"empty default", dc,
                 inAlternatives("<rdf:li xml:lang='x-default'/><rdf:li xml:lang='de'>Hafen</rdf:li>"),
                 "Hafen"},
             {"no language", dc, inAlternatives("<rdf:li>Harbour</rdf:li>"), "Harbour"},
             {"plain text", dc, "<dc:title>Harbour</dc:title>", "Harbour"},
             {"attribute", dc + " dc:title='Harbour &amp; sea'", "", "Harbour & sea"},
             {"other prefix", "xmlns:d='http://purl.org/dc/elements/1.1/'", "<d:title>Harbour</d:title>",
                 "Harbour"},
             {"other namespace", "xmlns:dc='http://example.org/'", "<dc:title>Harbour</dc:title>", ""},
             {"namespace declared later", "", fmt::format("<dc:title {}>Harbour</dc:title>", dc), "Harbour"},
             {"shadowed", dc, "<dc:title xmlns:dc='http://example.org/'>Harbour</dc:title>", ""},
             {"character data", dc, "<dc:title>A <![CDATA[<b> & c]]> &lt;&#x1F338;</dc:title>",
                 "A <b> & c <🌸"},
             {"value of a structure", dc, inAlternatives("<rdf:li><rdf:value>Harbour</rdf:value></rdf:li>"),
                 "Harbour"},
             {"Latin-1", dc, "<dc:title>Z\xFCrich</dc:title>", "Zürich"},
             {"white space", dc, "<dc:title>  two \n lines </dc:title>", "  two \n lines "},
         })
        EXPECT_EQ(read(packet(attributes, properties)).title, title) << what;
}

TEST(Xmp, readsListsEntryByEntry)
{
    const auto keywords = [](std::string_view items) {
        return read(packet(dublinCore, fmt::format("<dc:subject><rdf:Bag>{}</rdf:Bag></dc:subject>", items)))
            .keywords;
    };
    using Keywords = std::vector<std::string>;
    EXPECT_EQ(keywords("<rdf:li>a, b</rdf:li>"), (Keywords{"a", "b"}));
    EXPECT_EQ(
        keywords("<rdf:li>a, b</rdf:li><rdf:li> c|d </rdf:li><rdf:li> </rdf:li>"), (Keywords{"a, b", "c|d"}));
    EXPECT_EQ(keywords(""), Keywords());
    EXPECT_EQ(read(packet(dublinCore,
                       "<dc:creator><rdf:Seq><rdf:li>Ana</rdf:li><rdf:li>Bo</rdf:li></rdf:Seq></dc:creator>"))
                  .creator,
        "Ana");
}

TEST(Xmp, takesWhatStandsBeforeTheDamage)
{
    const auto whole = packet(dublinCore, "<dc:title>Harbour</dc:title><dc:rights>Ana</dc:rights>");
    const auto cut = whole.substr(0, whole.find("Ana"));
    EXPECT_EQ(read(cut).title, "Harbour");
    EXPECT_EQ(read(cut).copyright, "");
    EXPECT_EQ(read("not XML at all"), DescriptiveFields());
    EXPECT_EQ(read(""), DescriptiveFields());
}

} // namespace korvo
