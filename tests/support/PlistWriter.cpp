#include "tests/support/PlistWriter.h"

#include <bit>

namespace korvo {

namespace {

using Draft = PlistDraft;

std::string markerBytes(unsigned kind, std::uint64_t length)
{
    const auto marker
        = [](unsigned high, std::uint64_t low) { return std::string(1, static_cast<char>(high << 4 | low)); };
    return length < 15 ? marker(kind, length) : marker(kind, 15) + marker(1, 2) + bigEndianBytes(length, 4);
}

std::string doubleBytes(const char* marker, double value)
{
    return marker + bigEndianBytes(std::bit_cast<std::uint64_t>(value), 8);
}

/// Adds a value and all it holds to a list.
struct Adding {
    RawPlist& list;

    /// Returns the index of its object.
    std::uint64_t add(const Draft& draft) const
    {
        const auto index = list.objects.size();
        list.objects.emplace_back();
        auto bytes = std::visit(*this, draft.value);
        list.objects[index] = std::move(bytes);
        return index;
    }

    std::string operator()(Draft::Null) const { return std::string(1, '\0'); }
    std::string operator()(bool value) const { return value ? "\x09" : "\x08"; }
    std::string operator()(std::int64_t value) const
    {
        const auto bits = static_cast<std::uint64_t>(value);
        return bits < 256 ? "\x10" + bigEndianBytes(bits, 1) : "\x13" + bigEndianBytes(bits, 8);
    }
    std::string operator()(double value) const { return doubleBytes("\x23", value); }
    std::string operator()(Draft::Date date) const { return doubleBytes("\x33", date.seconds); }
    std::string operator()(Draft::Uid uid) const
    {
        return "\x83" + bigEndianBytes(static_cast<std::uint64_t>(uid.index), 4);
    }
    std::string operator()(const Draft::Data& data) const
    {
        return markerBytes(4, data.size()) + std::string(data.begin(), data.end());
    }
    /// Ours are read as UTF-8 whatever the marker promises.
    std::string operator()(const std::string& text) const { return markerBytes(5, text.size()) + text; }
    std::string operator()(const Draft::Array& elements) const
    {
        auto bytes = markerBytes(0xA, elements.size());
        for (const auto& element : elements)
            bytes += bigEndianBytes(add(element), list.refSize);
        return bytes;
    }
    std::string operator()(const Draft::Dict& members) const
    {
        auto bytes = markerBytes(0xD, members.size());
        for (const auto& member : members)
            bytes += bigEndianBytes(add(member.key), list.refSize);
        for (const auto& member : members)
            bytes += bigEndianBytes(add(member.value), list.refSize);
        return bytes;
    }
};

class Archiver {
public:
    Draft archive(const Draft& root)
    {
        const auto top = object(root);
        return plistDict({{"$version", Draft(std::int64_t(100000))}, {"$objects", Draft(std::move(objects_))},
            {"$archiver", Draft("NSKeyedArchiver")}, {"$top", plistDict({{"root", top}})}});
    }

private:
    Draft add(Draft value)
    {
        objects_.push_back(std::move(value));
        return uid(objects_.size() - 1);
    }

    static Draft uid(std::size_t index) { return Draft(Draft::Uid{static_cast<std::int64_t>(index)}); }

    Draft object(const Draft& draft)
    {
        const auto* const dict = std::get_if<Draft::Dict>(&draft.value);
        const auto* const array = std::get_if<Draft::Array>(&draft.value);
        if (!dict && !array)
            return add(draft);
        const auto own = objects_.size();
        add(Draft());
        Draft::Array keys, values;
        for (const auto& member : dict ? *dict : Draft::Dict()) {
            keys.push_back(object(member.key));
            values.push_back(object(member.value));
        }
        for (const auto& element : array ? *array : Draft::Array())
            values.push_back(object(element));
        std::vector<std::pair<std::string, Draft>> members;
        if (dict)
            members.emplace_back("NS.keys", Draft(std::move(keys)));
        members.emplace_back("NS.objects", Draft(std::move(values)));
        members.emplace_back("$class", classNamed(dict ? "NSMutableDictionary" : "NSArray"));
        objects_[own] = plistDict(std::move(members));
        return uid(own);
    }

    Draft classNamed(const char* name)
    {
        return add(plistDict({{"$classname", Draft(name)},
            {"$classes", Draft(Draft::Array{Draft(name), Draft("NSObject")})}}));
    }

    Draft::Array objects_{Draft("$null")};
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

std::string plistBytes(const Draft& value)
{
    RawPlist list{.offsetSize = 4, .refSize = 2};
    Adding{list}.add(value);
    if (list.objects.size() >= 65536) {
        list = {.offsetSize = 4, .refSize = 4};
        Adding{list}.add(value);
    }
    return list.bytes();
}

Draft plistDict(std::vector<std::pair<std::string, Draft>> members)
{
    Draft::Dict dict;
    for (auto& [key, value] : members)
        dict.push_back({Draft(key), std::move(value)});
    return Draft(std::move(dict));
}

std::string archiveBytes(const Draft& root)
{
    return plistBytes(Archiver().archive(root));
}

} // namespace korvo
