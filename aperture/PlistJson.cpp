#include "aperture/PlistJson.h"

#include "base/Base64.h"
#include "base/JsonEncoding.h"

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

using Plist = BinaryPlist::Value;

void writeNumber(JsonWriter& writer, double number)
{
    if (std::isfinite(number))
        writer.number(number);
    else
        writer.text(std::isnan(number) ? "nan" : number > 0 ? "inf" : "-inf");
}

void writeReal(JsonWriter& writer, double real)
{
    if (std::isfinite(real)) {
        writer.number(real);
        return;
    }
    writer.beginObject();
    writer.key("real");
    writeNumber(writer, real);
    writer.endObject();
}

void writeDate(JsonWriter& writer, double seconds)
{
    writer.beginObject();
    writer.key("date");
    writeNumber(writer, seconds);
    writer.endObject();
}

template <typename T>
void writeWrapped(JsonWriter& writer, std::string_view name, const T& value)
{
    writer.beginObject();
    writer.member(name, value);
    writer.endObject();
}

bool isPlain(std::span<const BinaryPlist::Member> members)
{
    std::vector<std::string_view> keys;
    for (const auto& member : members)
        if (const auto key = member.key.text())
            keys.push_back(*key);
    std::sort(keys.begin(), keys.end());
    return keys.size() == members.size() && std::adjacent_find(keys.begin(), keys.end()) == keys.end();
}

void writePairs(JsonWriter& writer, std::span<const BinaryPlist::Member> members)
{
    writer.beginObject();
    writer.key("pairs");
    writer.beginArray();
    for (const auto& [key, value] : members) {
        writer.beginArray();
        writeJson(writer, key);
        writeJson(writer, value);
        writer.endArray();
    }
    writer.endArray();
    writer.endObject();
}

void writeDict(JsonWriter& writer, std::span<const BinaryPlist::Member> members)
{
    if (!isPlain(members))
        return writePairs(writer, members);
    writer.beginObject();
    for (const auto& [key, value] : members) {
        writer.key(*key.text());
        writeJson(writer, value);
    }
    writer.endObject();
}

} // namespace

void writeJson(JsonWriter& writer, const Plist& value)
{
    switch (value.kind()) {
    case Plist::Kind::boolean:
        return writer.boolean(*value.boolean());
    case Plist::Kind::integer:
        return writer.integer(*value.integer());
    case Plist::Kind::real:
        return writeReal(writer, *value.real());
    case Plist::Kind::date:
        return writeDate(writer, *value.date());
    case Plist::Kind::data:
        return writeWrapped(writer, "data", base64(value.data()));
    case Plist::Kind::string:
        return writer.text(*value.text());
    case Plist::Kind::uid:
        return writeWrapped(writer, "uid", *value.uid());
    case Plist::Kind::array:
        writer.beginArray();
        for (const auto& element : value.elements())
            writeJson(writer, element);
        return writer.endArray();
    case Plist::Kind::dict:
        return writeDict(writer, value.members());
    case Plist::Kind::null:
        return writer.null();
    }
}

} // namespace korvo
