#include "metadata/exiftool/ExifToolRecords.h"

#include "base/Json.h"
#include "base/Text.h"
#include "catalog/KeywordList.h"
#include "metadata/Keywords.h"

#include <initializer_list>

namespace korvo {

namespace {

constexpr std::string_view structure = "[]{},: \t\r\n";

/// Puts quotes around numbers and truth values: a title "007.50" must come back as it is, which no number
/// could give.
std::string withQuotedValues(std::string_view json)
{
    std::string quoted;
    quoted.reserve(json.size());
    for (std::size_t at = 0; at < json.size();) {
        const auto begin = at;
        if (json[at] == '"') {
            for (++at; at < json.size() && json[at] != '"'; ++at)
                at += json[at] == '\\' ? 1 : 0;
            at = std::min(at + 1, json.size());
            quoted += json.substr(begin, at - begin);
        } else if (structure.find(json[at]) != structure.npos) {
            quoted += json[at++];
        } else {
            at = std::min(json.find_first_of(structure, at), json.size());
            quoted.append("\"").append(json.substr(begin, at - begin)).append("\"");
        }
    }
    return quoted;
}

std::vector<std::string> texts(JsonValue value)
{
    std::vector<std::string> all;
    if (value.kind() == JsonValue::Kind::text)
        all.emplace_back(value.text());
    else if (value.kind() == JsonValue::Kind::array)
        for (const JsonValue element : value.elements())
            if (element.kind() == JsonValue::Kind::text)
                all.emplace_back(element.text());
    return all;
}

using Keys = std::initializer_list<std::string_view>;

SharedText firstText(const ExifToolRecord& record, Keys keys)
{
    for (const auto key : keys)
        if (const auto found = record.values.find(key);
            found != record.values.end() && !found->second.empty())
            if (!found->second.front().empty())
                return SharedText(found->second.front());
    return {};
}

SharedText firstKeywords(const ExifToolRecord& record, Keys keys)
{
    for (const auto key : keys)
        if (const auto found = record.values.find(key); found != record.values.end())
            if (const auto keywords = tidyKeywords(found->second); !keywords.empty())
                return SharedText(joinKeywords(keywords));
    return {};
}

} // namespace

std::vector<ExifToolRecord> parseRecords(std::string_view json)
{
    if (trimmed(json).empty())
        return {};
    std::vector<ExifToolRecord> records;
    const JsonDocument document(withQuotedValues(json));
    for (const JsonValue object : document.root().elements()) {
        ExifToolRecord record;
        for (const auto [key, value] : object.members())
            record.values.emplace(key, texts(value));
        const auto file = record.values.find("SourceFile");
        if (file == record.values.end() || file->second.empty())
            continue;
        record.sourceFile = file->second.front();
        records.push_back(std::move(record));
    }
    return records;
}

PhotoMetadata descriptiveFields(const ExifToolRecord& record)
{
    return {firstText(record, {"XMP-iptcCore:AltTextAccessibility"}),
        firstText(record, {"XMP-dc:Title", "IPTC:ObjectName"}),
        firstText(record, {"XMP-dc:Description", "IPTC:Caption-Abstract"}),
        firstKeywords(record, {"XMP-dc:Subject", "IPTC:Keywords"}),
        firstText(record, {"XMP-dc:Creator", "IPTC:By-line", "IFD0:Artist"}),
        firstText(record, {"XMP-dc:Rights", "IPTC:CopyrightNotice", "IFD0:Copyright"})};
}

} // namespace korvo
