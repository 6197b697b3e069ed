// A whole picture of the kinds that our own process decodes, with its colour profile. Large ones are left
// out: they only take time.
#include "platform/linux/images/PictureDecoding.h"

namespace {

constexpr int mostFuzzed = 1 << 20; // pixels

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace korvo;
    PictureFile file("input", std::vector<std::uint8_t>(data, data + size));
    const auto open = safeDecoder(file);
    if (!open || open == openWebp)
        return 0;
    try {
        const auto info = open(file, {})->info();
        if (std::int64_t(info.fullWidth) * info.fullHeight > mostFuzzed)
            return 0;
        decodePicture(file, open, {40, PixelKind::linear, PictureSource::quick}, {});
        decodePicture(file, open, {}, {});
    } catch (const ImageError&) { }
    return 0;
}
