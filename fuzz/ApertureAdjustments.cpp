// Any bytes as the archive of every adjustment at once, brushed and not. The edits must be ones that can be
// stored and read again.
#include "aperture/AdjustmentOperation.h"
#include "aperture/BrushOperation.h"
#include "base/Json.h"

#include <cstdlib>

using namespace korvo;

namespace {

std::vector<ApertureAdjustment> adjustments(const BinaryPlist& parameters)
{
    std::vector<ApertureAdjustment> all;
    const auto add = [&](std::string_view name) {
        for (const auto* const mask : {"", "mask"})
            all.push_back({std::string(name), true, mask, parameters});
    };
    for (const auto& operation : adjustmentOperations())
        add(operation.name);
    for (const auto& operation : brushOperations())
        add(operation.name);
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::optional<BinaryPlist> archive;
    try {
        archive = BinaryPlist::unarchive({data, size});
    } catch (const BinaryPlist::ParseError&) {
        // most bytes are no archive
    }
    if (!archive)
        return 0;
    ApertureTranslator::Report report;
    const auto maskFile = [](const std::string& uuid) {
        return uuid.empty() ? std::nullopt : std::optional<std::filesystem::path>(uuid);
    };
    const auto all = adjustments(*archive);
    const auto edits = ApertureTranslator::translate(all, {{5000, 1}, 4000, 3000, 90}, maskFile, report);
    if (fromJson<PhotoEdits>(toJson(edits)) != edits)
        std::abort();
    ApertureTranslator::asShot(all);
    return 0;
}
