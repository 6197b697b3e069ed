// Any bytes as the text of an edit. What decodes must encode and decode to an equal record with an equal
// hash.
#include "edits/PhotoEdits.h"
#include "base/Json.h"

#include <cstdlib>

using namespace korvo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::optional<PhotoEdits> edits;
    try {
        edits = fromJson<PhotoEdits>({reinterpret_cast<const char*>(data), size});
    } catch (const JsonError&) {
        return 0; // most bytes are no edit
    }
    const auto text = toJson(*edits);
    const auto again = fromJson<PhotoEdits>(text);
    if (again != *edits || hashOf(again) != hashOf(*edits) || toJson(again) != text)
        std::abort();
    return 0;
}
