#pragma once

#include <cstdint>
#include <lcms2.h>
#include <memory>
#include <vector>

namespace korvo {

struct CloseIccProfile {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using IccProfile = std::unique_ptr<void, CloseIccProfile>;

/// The colours (CIE xy) of red, green and blue.
using Primaries = cmsCIExyYTRIPLE;
inline constexpr Primaries srgbPrimaries{{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
inline constexpr Primaries adobePrimaries{{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
inline constexpr Primaries displayP3Primaries{{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}};
inline constexpr Primaries bt2020Primaries{{0.708, 0.292, 1}, {0.170, 0.797, 1}, {0.131, 0.046, 1}};

/// A profile whose white is D65, with the curve x^gamma. Throws std::bad_alloc, as the others do.
IccProfile gammaProfile(const Primaries& primaries, double gamma);
/// The same with sRGB's curve (IEC 61966-2-1).
IccProfile srgbCurveProfile(const Primaries& primaries);

/// A profile as it stands in a file.
std::vector<std::uint8_t> iccBytes(const IccProfile& profile);

} // namespace korvo
