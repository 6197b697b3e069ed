// Any bytes as a property list and as a keyed archive. What comes out must be walkable in a time that goes
// with the size of the input, and must be text.
#include "aperture/PlistJson.h"

#include <cstdlib>

using namespace korvo;

namespace {

std::size_t countValues(const BinaryPlist::Value& value)
{
    std::size_t count = 1;
    for (const auto& element : value.elements())
        count += countValues(element);
    for (const auto& [key, member] : value.members())
        count += countValues(key) + countValues(member);
    return count;
}

void walk(const BinaryPlist::Value& value, std::size_t most)
{
    if (countValues(value) > most)
        std::abort();
    JsonWriter json;
    writeJson(json, value);
    if (json.take().empty())
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Bytes bytes(data, size);
    try {
        const auto list = BinaryPlist::parse(bytes);
        walk(list.root(), 64 * size);
        if (const auto archive = BinaryPlist::unarchive(bytes))
            walk(archive->root(), 8 * size);
    } catch (const BinaryPlist::ParseError&) {
        // most bytes are no property list
    }
    return 0;
}
