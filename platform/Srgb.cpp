#include "platform/Srgb.h"

#include <bit>

namespace korvo {

namespace {

std::array<float, 256> makeLinear()
{
    std::array<float, 256> result;
    for (std::size_t code = 0; code < result.size(); ++code)
        result[code] = static_cast<float>(decodedSrgb(static_cast<long double>(code) / 255));
    return result;
}

/// The bits of the smallest float that gets `code`.
std::uint32_t firstBitsOf(std::uint32_t code)
{
    const long double border = decodedSrgb((static_cast<long double>(code) - 0.5L) / 255);
    const auto nearest = static_cast<float>(border);
    return std::bit_cast<std::uint32_t>(nearest) + (nearest < border ? 1 : 0);
}

SrgbSlots makeSlots()
{
    SrgbSlots result;
    std::uint32_t code = 0;
    for (std::uint32_t slot = 0; slot < SrgbSlots::count; ++slot) {
        const std::uint32_t start = SrgbSlots::firstBits + (slot << 16);
        if (code < 255 && firstBitsOf(code + 1) == start)
            ++code;
        result.slots[slot] = code << 16;
        if (code < 255 && firstBitsOf(code + 1) < start + 0x10000)
            result.slots[slot] += start + 0x10000 - firstBitsOf(++code);
    }
    return result;
}

} // namespace

const std::array<float, 256>& linearOfSrgb()
{
    static const auto table = makeLinear();
    return table;
}

const SrgbSlots& srgbSlots()
{
    static const auto table = makeSlots();
    return table;
}

} // namespace korvo
