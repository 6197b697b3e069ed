#include "edits/AutoEnhance.h"

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

using Statistics = AutoEnhance::Statistics;

double luminance(const std::uint8_t* pixel)
{
    return 0.2126 * (pixel[0] / 255.0) + 0.7152 * (pixel[1] / 255.0) + 0.0722 * (pixel[2] / 255.0);
}

double saturation(const std::uint8_t* pixel)
{
    const double largest = std::max({pixel[0], pixel[1], pixel[2]}) / 255.0;
    const double smallest = std::min({pixel[0], pixel[1], pixel[2]}) / 255.0;
    return largest > 0 ? (largest - smallest) / largest : 0;
}

/// Where the value stands that a fraction of all are below, if they were sorted.
std::size_t rank(double fraction, std::size_t count)
{
    return std::min(static_cast<std::size_t>(fraction * static_cast<double>(count)), count - 1);
}

/// The two percentiles, without sorting: what is selected does not depend on how.
void selectPercentiles(std::vector<double>& luminances, Statistics& result)
{
    const auto begin = luminances.begin(), end = luminances.end();
    const auto low = begin + static_cast<std::ptrdiff_t>(rank(0.05, luminances.size()));
    const auto high = begin + static_cast<std::ptrdiff_t>(rank(0.95, luminances.size()));
    std::nth_element(begin, low, end);
    result.lowLuminance = *low;
    std::nth_element(low, high, end);
    result.highLuminance = *high;
}

double round2(double value)
{
    return std::round(value * 100) / 100;
}

double exposureFor(double meanLuminance)
{
    if (!(meanLuminance > 0.01))
        return 0;
    const double stops = std::log2(0.42 / meanLuminance);
    if (std::abs(stops) < 0.1)
        return 0; // too small to bother
    return round2(std::clamp(stops, -1.25, 1.25));
}

double contrastFor(double spread)
{
    return spread > 0.05 && spread < 0.65 ? round2(std::min((0.65 - spread) * 0.6 + 1, 1.3)) : 1;
}

double vibranceFor(double meanSaturation)
{
    return meanSaturation > 0.03 && meanSaturation < 0.22
        ? round2(std::min((0.22 - meanSaturation) * 2, 0.35))
        : 0;
}

double highlightsFor(double fraction)
{
    return fraction > 0.02 ? round2(std::min((fraction - 0.02) * 3 + 0.1, 0.6)) : 0;
}

double shadowsFor(double fraction)
{
    return fraction > 0.04 ? round2(std::min((fraction - 0.04) * 2.5 + 0.1, 0.5)) : 0;
}

std::optional<double> unlessZero(double value)
{
    return value != 0 ? std::optional(value) : std::nullopt;
}

} // namespace

std::optional<Statistics> AutoEnhance::statistics(const Bitmap& rendition)
{
    const std::size_t count = rendition.bytes.size() / 4;
    if (count == 0)
        return {};
    std::vector<double> luminances(count);
    double luminanceSum = 0, saturationSum = 0;
    std::size_t dark = 0, bright = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* const pixel = rendition.bytes.data() + 4 * i;
        const double y = luminance(pixel);
        luminances[i] = y;
        luminanceSum += y;
        saturationSum += saturation(pixel);
        dark += y < 0.04;
        bright += y > 0.96;
    }
    const auto fraction = [&](auto part) { return static_cast<double>(part) / static_cast<double>(count); };
    Statistics result{.meanLuminance = fraction(luminanceSum),
        .meanSaturation = fraction(saturationSum),
        .shadowFraction = fraction(dark),
        .highlightFraction = fraction(bright)};
    selectPercentiles(luminances, result);
    return result;
}

AutoEnhance::Values AutoEnhance::values(const Statistics& statistics)
{
    return {
        .exposure = exposureFor(statistics.meanLuminance),
        .contrast = contrastFor(statistics.highLuminance - statistics.lowLuminance),
        .vibrance = vibranceFor(statistics.meanSaturation),
        .highlights = highlightsFor(statistics.highlightFraction),
        .shadows = shadowsFor(statistics.shadowFraction),
    };
}

void AutoEnhance::apply(const Values& values, Fields fields, PhotoEdits& edits)
{
    if (contains(fields, Fields::exposure))
        edits.exposure = values.exposure;
    if (contains(fields, Fields::contrast))
        edits.contrast = values.contrast;
    if (contains(fields, Fields::vibrance))
        edits.vibrance = values.vibrance;
    if (contains(fields, Fields::highlights))
        edits.highlights = unlessZero(values.highlights);
    if (contains(fields, Fields::shadows))
        edits.shadows = unlessZero(values.shadows);
}

} // namespace korvo
