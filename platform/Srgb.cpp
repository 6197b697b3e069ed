#include "platform/Srgb.h"

#include <bit>
#include <cmath>

namespace korvo {

namespace {

/// The linear value of an encoded one, 0 to 1.
long double decoded(long double encoded)
{
    return encoded <= 0.04045L ? encoded / 12.92L : std::pow((encoded + 0.055L) / 1.055L, 2.4L);
}

std::array<float, 256> makeLinear()
{
    std::array<float, 256> result;
    for (std::size_t code = 0; code < result.size(); ++code)
        result[code] = static_cast<float>(decoded(static_cast<long double>(code) / 255));
    return result;
}

/// The bits of the smallest float that gets `code`.
std::uint32_t firstBitsOf(std::uint32_t code)
{
    const long double border = decoded((static_cast<long double>(code) - 0.5L) / 255);
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
