// Any bytes as the rules of a smart album, and as a place. What decodes must encode and decode to equal rules
// and match without harm; a place must read from what it writes.
#include "base/Json.h"
#include "catalog/SmartAlbumMatcher.h"

#include <cstdlib>

using namespace korvo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    if (const auto place = parseNearPlace(input))
        if (parseNearPlace(text(*place)) != place)
            std::abort();
    try {
        const auto rules = smartAlbumRules(input);
        if (smartAlbumRules(toJson(rules)) != rules)
            std::abort();
        PhotoItem item;
        item.filename = SharedText(input.substr(0, 64));
        item.metadata.title = SharedText(input);
        item.captureDate = 1.7e9;
        item.latitude = item.longitude = 10.0;
        SmartAlbumMatcher(rules).matches(item);
    } catch (const JsonError&) {
        // most bytes are no rules
    }
    return 0;
}
