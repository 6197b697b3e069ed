#include "metadata/Xmp.h"

#include "base/Text.h"
#include "metadata/ForeignText.h"
#include "metadata/Keywords.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <pugixml.hpp>
#include <string_view>
#include <vector>

namespace korvo {

namespace {

enum class Namespace { other, rdf, dublinCore, iptcCore, exif };

struct Name {
    Namespace space = Namespace::other;
    std::string_view local;

    friend bool operator==(const Name&, const Name&) = default;
};

Namespace namespaceOf(std::string_view uri)
{
    if (uri == "http://www.w3.org/1999/02/22-rdf-syntax-ns#")
        return Namespace::rdf;
    if (uri == "http://purl.org/dc/elements/1.1/")
        return Namespace::dublinCore;
    if (uri == "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/")
        return Namespace::iptcCore;
    if (uri == "http://ns.adobe.com/exif/1.0/")
        return Namespace::exif;
    return Namespace::other;
}

/// The namespace prefixes in force at a place of the document, innermost last.
class Prefixes {
    struct Prefix {
        std::string_view prefix;
        Namespace space = Namespace::other;
    };

public:
    /// Those that an element declares, in force as long as this lives.
    class Scope {
    public:
        Scope(Prefixes& prefixes, pugi::xml_node element)
            : prefixes_(prefixes.prefixes_), outerCount_(prefixes_.size())
        {
            constexpr std::string_view declaration = "xmlns:";
            for (const auto attribute : element.attributes())
                if (const std::string_view name = attribute.name(); name.starts_with(declaration))
                    if (prefixes_.size() < most)
                        prefixes_.push_back(
                            {name.substr(declaration.size()), namespaceOf(attribute.value())});
        }
        ~Scope() { prefixes_.resize(outerCount_); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        std::vector<Prefix>& prefixes_;
        std::size_t outerCount_;
    };

    Name resolved(std::string_view name) const
    {
        const auto colon = name.find(':');
        if (colon == std::string_view::npos)
            return {Namespace::other, name};
        const auto prefix = name.substr(0, colon);
        const auto found = std::find_if(
            prefixes_.rbegin(), prefixes_.rend(), [&](const Prefix& each) { return each.prefix == prefix; });
        return {found == prefixes_.rend() ? Namespace::other : found->space, name.substr(colon + 1)};
    }

private:
    static constexpr std::size_t most = 100;
    std::vector<Prefix> prefixes_;
};

/// Text and CDATA directly in an element, comments left out.
std::string textOf(pugi::xml_node element)
{
    std::string text;
    for (const auto child : element.children())
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
            text += child.value();
    return fromUnknownEncoding(text);
}

struct ListEntry {
    std::string text;
    std::string_view language;
};

bool isDefault(const ListEntry& entry)
{
    return compareNoCase(entry.language, "x-default") == 0;
}

/// The entry in the default language, else the first that holds anything.
std::string chosenText(std::vector<ListEntry>& entries)
{
    auto chosen = std::ranges::find_if(entries, isDefault);
    if (chosen == entries.end() || chosen->text.empty())
        chosen = std::ranges::find_if(entries, [](const ListEntry& entry) { return !entry.text.empty(); });
    return chosen == entries.end() ? std::string() : std::move(chosen->text);
}

class XmpReader {
public:
    explicit XmpReader(const pugi::xml_document& document) { visit(document, 0); }

    DescriptiveFields fields;
    std::string latitude, longitude;

private:
    // How deep the descriptions may lie: document, x:xmpmeta, rdf:RDF, rdf:Description, and one for good
    // measure.
    static constexpr int deepest = 5;

    void visit(pugi::xml_node parent, int depth)
    {
        for (const auto element : parent.children()) {
            if (element.type() != pugi::node_element)
                continue;
            const Prefixes::Scope scope(prefixes_, element);
            if (prefixes_.resolved(element.name()) == Name{Namespace::rdf, "Description"})
                takeDescription(element);
            else if (depth < deepest)
                visit(element, depth + 1);
        }
    }

    void takeDescription(pugi::xml_node description)
    {
        for (const auto attribute : description.attributes())
            if (const auto name = prefixes_.resolved(attribute.name()); isWanted(name))
                takeProperty(name, {{fromUnknownEncoding(attribute.value()), {}}});
        for (const auto property : description.children()) {
            const Prefixes::Scope scope(prefixes_, property);
            if (const auto name = prefixes_.resolved(property.name()); isWanted(name))
                takeProperty(name, entriesOf(property));
        }
    }

    static bool isWanted(const Name& name)
    {
        return name.space != Namespace::other && name.space != Namespace::rdf;
    }

    void takeProperty(const Name& name, std::vector<ListEntry> entries)
    {
        if (name == Name{Namespace::dublinCore, "subject"} && fields.keywords.empty())
            fields.keywords = keywordsOf(std::move(entries));
        for (const auto& [property, field] : textProperties)
            if (name == property)
                if (auto text = chosenText(entries); !text.empty())
                    fields.*field = std::move(text);
        if (name == Name{Namespace::exif, "GPSLatitude"})
            latitude = chosenText(entries);
        if (name == Name{Namespace::exif, "GPSLongitude"})
            longitude = chosenText(entries);
    }

    static std::vector<std::string> keywordsOf(std::vector<ListEntry> entries)
    {
        std::vector<std::string> keywords;
        for (auto& entry : entries)
            keywords.push_back(std::move(entry.text));
        return tidyKeywords(std::move(keywords));
    }

    /// The entries of a Bag, Seq or Alt, or the plain text of a property as the only one.
    std::vector<ListEntry> entriesOf(pugi::xml_node property)
    {
        std::vector<ListEntry> entries;
        for (const auto container : property.children()) {
            const Prefixes::Scope scope(prefixes_, container);
            if (prefixes_.resolved(container.name()).space == Namespace::rdf)
                for (const auto item : container.children())
                    if (item.type() == pugi::node_element)
                        entries.push_back({valueOf(item), item.attribute("xml:lang").value()});
        }
        if (entries.empty())
            entries.push_back({valueOf(property), {}});
        return entries;
    }

    /// The text of an element, which stands one level lower when something is said about it.
    std::string valueOf(pugi::xml_node element)
    {
        for (const auto child : element.children())
            if (prefixes_.resolved(child.name()) == Name{Namespace::rdf, "value"})
                return textOf(child);
        return textOf(element);
    }

    struct TextProperty {
        Name name;
        std::string DescriptiveFields::*field;
    };

    static constexpr std::array textProperties{
        TextProperty{{Namespace::iptcCore, "AltTextAccessibility"}, &DescriptiveFields::altText},
        TextProperty{{Namespace::dublinCore, "title"}, &DescriptiveFields::title},
        TextProperty{{Namespace::dublinCore, "description"}, &DescriptiveFields::caption},
        TextProperty{{Namespace::dublinCore, "creator"}, &DescriptiveFields::creator},
        TextProperty{{Namespace::dublinCore, "rights"}, &DescriptiveFields::copyright},
    };

    Prefixes prefixes_;
};

XmpReader reading(Bytes packet)
{
    pugi::xml_document document;
    // A damaged packet leaves in the document what was read of it until then.
    (void)document.load_buffer(packet.data(), packet.size());
    return XmpReader(document);
}

/// The degrees of "33,51.6S" or "33,51,36S": south and west are below 0.
std::optional<double> degreesOf(std::string_view text, std::string_view letters)
{
    const auto letter = text.empty() ? letters.npos : letters.find(text.back());
    if (letter == letters.npos)
        return std::nullopt;
    double sum = 0, unit = 1;
    for (const auto part : split(text.substr(0, text.size() - 1), ',')) {
        double value = 0;
        const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
        if (error != std::errc() || end != part.data() + part.size() || !(value >= 0))
            return std::nullopt;
        sum += value / unit;
        unit *= 60;
    }
    return letter == 0 ? sum : -sum;
}

} // namespace

DescriptiveFields readXmp(Bytes packet)
{
    return reading(packet).fields;
}

bool mentionsPosition(Bytes packet)
{
    return packet.text().find("GPSL") != std::string_view::npos;
}

std::optional<Coordinate> readXmpPosition(Bytes packet)
{
    if (!mentionsPosition(packet)) // nearly none do
        return std::nullopt;
    const auto read = reading(packet);
    const auto latitude = degreesOf(read.latitude, "NS"), longitude = degreesOf(read.longitude, "EW");
    if (!latitude || !longitude || std::abs(*latitude) > 90 || std::abs(*longitude) > 180)
        return std::nullopt;
    return Coordinate{*latitude, *longitude};
}

bool isDamagedXmp(Bytes packet)
{
    const auto status = pugi::xml_document().load_buffer(packet.data(), packet.size()).status;
    return status != pugi::status_ok && status != pugi::status_no_document_element; // an empty one is whole
}

} // namespace korvo
