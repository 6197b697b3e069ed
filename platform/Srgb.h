#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

/// Between 8-bit sRGB codes and linear light (IEC 61966-2-1), exactly.
namespace korvo {

/// The linear value of an encoded one, 0 to 1; beyond both ends the curve goes on.
template <typename Real>
Real decodedSrgb(Real encoded)
{
    return encoded <= Real(0.04045L) ? encoded / Real(12.92L)
                                     : std::pow((encoded + Real(0.055L)) / Real(1.055L), Real(2.4L));
}

/// The linear value of each code.
const std::array<float, 256>& linearOfSrgb();

/// What a linear value's code is found with, in one look-up. A value clamped to lowest..highest falls into
/// the slot of its leading bits; in no slot does the code step up more than once. A slot holds the code at
/// its start in the upper 16 bits, and in the lower ones the distance of that step from the slot's end, so
/// that adding the value's trailing 16 bits carries over exactly from the step on.
struct SrgbSlots {
    static constexpr float lowest = 0x1p-13F; // black still
    static constexpr float highest = 1 - 0x1p-24F;
    static constexpr std::uint32_t firstBits = 0x39000000; // of lowest
    static constexpr std::size_t count = 1664;

    std::array<std::uint32_t, count> slots;
};
const SrgbSlots& srgbSlots();

/// The code nearest to a linear value, for every float: floor(255 encoded + 1/2). Below 0 and NaN are 0,
/// above 1 is 255.
inline std::uint8_t srgbOfLinear(float value, const SrgbSlots& table = srgbSlots())
{
    value = value > SrgbSlots::lowest ? value : SrgbSlots::lowest;
    value = value < SrgbSlots::highest ? value : SrgbSlots::highest;
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    bits -= SrgbSlots::firstBits;
    return static_cast<std::uint8_t>((table.slots[bits >> 16] + (bits & 0xFFFF)) >> 16);
}

} // namespace korvo
