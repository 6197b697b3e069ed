#include "platform/linux/images/IccProfiles.h"

#include <new>

namespace korvo {

namespace {

struct FreeCurve {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using ToneCurve = std::unique_ptr<cmsToneCurve, FreeCurve>;

IccProfile profileWith(const Primaries& primaries, const ToneCurve& curve)
{
    constexpr cmsCIExyY d65{0.3127, 0.3290, 1};
    cmsToneCurve* const curves[] = {curve.get(), curve.get(), curve.get()};
    IccProfile profile(curve ? cmsCreateRGBProfile(&d65, &primaries, curves) : nullptr);
    if (!profile)
        throw std::bad_alloc();
    return profile;
}

} // namespace

IccProfile gammaProfile(const Primaries& primaries, double gamma)
{
    return profileWith(primaries, ToneCurve(cmsBuildGamma(nullptr, gamma)));
}

IccProfile srgbCurveProfile(const Primaries& primaries)
{
    constexpr cmsFloat64Number curve[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return profileWith(primaries, ToneCurve(cmsBuildParametricToneCurve(nullptr, 4, curve)));
}

std::vector<std::uint8_t> iccBytes(const IccProfile& profile)
{
    cmsUInt32Number length = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &length))
        throw std::bad_alloc();
    std::vector<std::uint8_t> bytes(length);
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &length))
        throw std::bad_alloc();
    return bytes;
}

} // namespace korvo
