#include "tests/support/PlistWriter.h"

#include <bit>

namespace korvo {

namespace {

using Value = BinaryPlist::Value;

std::string markerBytes(unsigned kind, std::uint64_t length)
{
    const auto marker
        = [](unsigned high, std::uint64_t low) { return std::string(1, static_cast<char>(high << 4 | low)); };
    return length < 15 ? marker(kind, length) : marker(kind, 15) + marker(1, 2) + bigEndianBytes(length, 4);
}

std::string scalarBytes(const Value& value)
{
    switch (value.kind()) {
    case Value::Kind::boolean:
        return value.boolean() == true ? "\x09" : "\x08";
    case Value::Kind::integer: {
        const auto integer = static_cast<std::uint64_t>(*value.integer());
        return integer < 256 ? "\x10" + bigEndianBytes(integer, 1) : "\x13" + bigEndianBytes(integer, 8);
    }
    case Value::Kind::real:
        return "\x23" + bigEndianBytes(std::bit_cast<std::uint64_t>(*value.real()), 8);
    case Value::Kind::date:
        return "\x33" + bigEndianBytes(std::bit_cast<std::uint64_t>(*value.date()), 8);
    case Value::Kind::data:
        return markerBytes(4, value.data().size()) + std::string(value.data().begin(), value.data().end());
    case Value::Kind::string: // ours are read as UTF-8 whatever the marker promises
        return markerBytes(5, value.text()->size()) + std::string(*value.text());
    case Value::Kind::uid:
        return "\x83" + bigEndianBytes(static_cast<std::uint64_t>(*value.uid()), 4);
    default:
        return std::string(1, '\0');
    }
}

/// Adds the value and all it holds to the list; returns the index of its object.
std::uint64_t add(RawPlist& list, const Value& value)
{
    const auto index = list.objects.size();
    list.objects.emplace_back();
    std::string bytes = scalarBytes(value);
    if (value.kind() == Value::Kind::array) {
        bytes = markerBytes(0xA, value.elements().size());
        for (const auto& element : value.elements())
            bytes += bigEndianBytes(add(list, element), list.refSize);
    } else if (value.kind() == Value::Kind::dict) {
        bytes = markerBytes(0xD, value.members().size());
        for (const auto& member : value.members())
            bytes += bigEndianBytes(add(list, member.key), list.refSize);
        for (const auto& member : value.members())
            bytes += bigEndianBytes(add(list, member.value), list.refSize);
    }
    list.objects[index] = std::move(bytes);
    return index;
}

class Archiver {
public:
    Value archive(const Value& root)
    {
        const auto top = object(root);
        return plistDict({{"$version", Value(std::int64_t(100000))}, {"$objects", Value(std::move(objects_))},
            {"$archiver", Value("NSKeyedArchiver")}, {"$top", plistDict({{"root", top}})}});
    }

private:
    Value add(Value value)
    {
        objects_.push_back(std::move(value));
        return Value(Value::Uid{static_cast<std::int64_t>(objects_.size()) - 1});
    }

    Value object(const Value& value)
    {
        if (value.kind() != Value::Kind::dict && value.kind() != Value::Kind::array)
            return add(value);
        const auto own = add(Value());
        Value::Array keys, values;
        for (const auto& member : value.members()) {
            keys.push_back(object(member.key));
            values.push_back(object(member.value));
        }
        for (const auto& element : value.elements())
            values.push_back(object(element));
        std::vector<std::pair<std::string, Value>> members;
        const bool isDict = value.kind() == Value::Kind::dict;
        if (isDict)
            members.emplace_back("NS.keys", Value(std::move(keys)));
        members.emplace_back("NS.objects", Value(std::move(values)));
        members.emplace_back("$class", classNamed(isDict ? "NSMutableDictionary" : "NSArray"));
        objects_[static_cast<std::size_t>(*own.uid())] = plistDict(std::move(members));
        return own;
    }

    Value classNamed(const char* name)
    {
        return add(plistDict({{"$classname", Value(name)},
            {"$classes", Value(Value::Array{Value(name), Value("NSObject")})}}));
    }

    Value::Array objects_{Value("$null")};
};

} // namespace

std::string bigEndianBytes(std::uint64_t value, unsigned width)
{
    std::string bytes(width, '\0');
    for (unsigned i = 0; i < width && i < 8; ++i)
        bytes[width - 1 - i] = static_cast<char>(value >> (8 * i));
    return bytes;
}

std::string RawPlist::bytes() const
{
    std::string list = "bplist00";
    std::string table;
    for (const auto& object : objects) {
        table += bigEndianBytes(list.size(), offsetSize);
        list += object;
    }
    const auto tableOffset = list.size();
    return list + table + std::string(6, '\0') + static_cast<char>(offsetSize) + static_cast<char>(refSize)
        + bigEndianBytes(objects.size(), 8) + bigEndianBytes(top, 8) + bigEndianBytes(tableOffset, 8);
}

std::string plistBytes(const Value& value)
{
    RawPlist list{.offsetSize = 4, .refSize = 2};
    add(list, value);
    if (list.objects.size() >= 65536) {
        list = {.offsetSize = 4, .refSize = 4};
        add(list, value);
    }
    return list.bytes();
}

Value plistDict(std::vector<std::pair<std::string, Value>> members)
{
    Value::Dict dict;
    for (auto& [key, value] : members)
        dict.push_back({Value(SharedText(key)), std::move(value)});
    return Value(std::move(dict));
}

std::string archiveBytes(const Value& root)
{
    return plistBytes(Archiver().archive(root));
}

} // namespace korvo
