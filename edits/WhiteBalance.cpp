#include "edits/WhiteBalance.h"

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

constexpr ColorMatrix xyzOfSrgb{0.4123907993, 0.3575843394, 0.1804807884, 0.2126390059, 0.7151686788,
    0.0721923154, 0.0193308187, 0.1191947798, 0.9505321522};
constexpr ColorMatrix bradford{0.8951, 0.2664, -0.1614, -0.7502, 1.7135, 0.0367, 0.0389, -0.0685, 1.0296};

/// A quotient of two quadratic polynomials in T, and its derivative.
struct Quotient {
    std::array<double, 3> above;
    std::array<double, 3> below;

    double at(double t) const { return value(above, t) / value(below, t); }
    double slope(double t) const
    {
        const double b = value(below, t);
        return (rise(above, t) * b - value(above, t) * rise(below, t)) / (b * b);
    }

private:
    static double value(const std::array<double, 3>& p, double t) { return p[0] + t * (p[1] + t * p[2]); }
    static double rise(const std::array<double, 3>& p, double t) { return p[1] + 2 * t * p[2]; }
};

// The Planckian locus.
constexpr Quotient locusU{{0.860117757, 1.54118254e-4, 1.28641212e-7}, {1, 8.42420235e-4, 7.08145163e-7}};
constexpr Quotient locusV{{0.317398726, 4.22806245e-5, 4.20481691e-8}, {1, -2.89741816e-5, 1.61456053e-7}};

/// XYZ of a white point; tint moves it off the locus, to the green side when positive.
Color whitePoint(const std::array<double, 2>& temperatureAndTint)
{
    const double t = std::clamp(temperatureAndTint[0], 2000.0, 15000.0);
    const double offset = std::clamp(temperatureAndTint[1], -150.0, 150.0) / 3000;
    const double du = locusU.slope(t), dv = locusV.slope(t), length = std::hypot(du, dv);
    const double u = locusU.at(t) + offset * dv / length;
    const double v = locusV.at(t) - offset * du / length;
    const double x = 3 * u / (2 * u - 8 * v + 4), y = 2 * v / (2 * u - 8 * v + 4);
    return {x / y, 1, (1 - x - y) / y};
}

} // namespace

ColorMatrix whiteBalanceMatrix(const CITemperatureAndTint& filter)
{
    const Color neutral = bradford * whitePoint(filter.inputNeutral);
    const Color target = bradford * whitePoint(filter.inputTargetNeutral);
    Color gains;
    for (std::size_t i = 0; i < gains.size(); ++i)
        gains[i] = neutral[i] > 0 ? std::clamp(target[i] / neutral[i], 1.0 / 8, 8.0) : 8;
    return inverse(xyzOfSrgb) * inverse(bradford) * diagonal(gains) * bradford * xyzOfSrgb;
}

} // namespace korvo
