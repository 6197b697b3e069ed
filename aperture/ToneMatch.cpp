#include "aperture/ToneMatch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace korvo {

namespace {

constexpr std::size_t levels = 256;
constexpr std::size_t points = 17;
constexpr double leastGain = 0.05; // of 255: a smaller gain is noise

/// What stands against each level of ours, over all pixels and channels.
struct Pairs {
    std::array<double, levels> count{};
    std::array<double, levels> sum{};
    double difference = 0;
    double total = 0;
};

template <typename Use>
void forEachPair(const Bitmap& ours, const Bitmap& theirs, Use use)
{
    for (std::size_t i = 0; i < ours.bytes.size(); ++i)
        if (i % 4 != 3) // alpha
            use(ours.bytes[i], theirs.bytes[i]);
}

Pairs pairsOf(const Bitmap& ours, const Bitmap& theirs)
{
    Pairs pairs;
    forEachPair(ours, theirs, [&](std::uint8_t a, std::uint8_t b) {
        pairs.count[a] += 1;
        pairs.sum[a] += b;
        pairs.difference += std::abs(a - b);
        pairs.total += 1;
    });
    return pairs;
}

/// A run of levels that share one value.
struct Run {
    double level; // the mean level of ours, by pixels
    double value; // the mean of theirs
    double weight;
};

Run joined(const Run& a, const Run& b)
{
    const auto mean
        = [&](double x, double y) { return (x * a.weight + y * b.weight) / (a.weight + b.weight); };
    return {mean(a.level, b.level), mean(a.value, b.value), a.weight + b.weight};
}

/// The least squares fit that never falls, by pooling neighbours that would (Ayer et al., 1955).
std::vector<Run> risingFit(const Pairs& pairs)
{
    std::vector<Run> runs;
    for (std::size_t level = 0; level < levels; ++level) {
        if (pairs.count[level] == 0)
            continue;
        runs.push_back(
            {static_cast<double>(level), pairs.sum[level] / pairs.count[level], pairs.count[level]});
        while (runs.size() > 1 && runs[runs.size() - 2].value >= runs.back().value) {
            runs[runs.size() - 2] = joined(runs[runs.size() - 2], runs.back());
            runs.pop_back();
        }
    }
    return runs;
}

/// The curve through points with rising x.
double interpolated(const std::vector<CurvePoint>& curve, double x)
{
    const auto after
        = std::find_if(curve.begin(), curve.end(), [&](const CurvePoint& point) { return point.x >= x; });
    if (after == curve.begin())
        return after->y;
    if (after == curve.end())
        return curve.back().y;
    const auto& before = *(after - 1);
    return before.y + (after->y - before.y) * (x - before.x) / (after->x - before.x);
}

/// The fit at evenly spaced levels; where ours has no pixels it goes on straight to black and to white.
std::vector<CurvePoint> curveThrough(const std::vector<Run>& runs)
{
    std::vector<CurvePoint> fit;
    if (runs.front().level > 0)
        fit.push_back({0, 0});
    for (const auto& run : runs)
        fit.push_back({run.level / 255, run.value / 255});
    if (runs.back().level < 255)
        fit.push_back({1, 1});
    std::vector<CurvePoint> curve;
    for (std::size_t i = 0; i < points; ++i) {
        const double x = static_cast<double>(i) / (points - 1);
        curve.push_back({x, interpolated(fit, x)});
    }
    return curve;
}

double differenceThrough(const std::vector<CurvePoint>& curve, const Bitmap& ours, const Bitmap& theirs)
{
    std::array<double, levels> mapped{};
    for (std::size_t level = 0; level < levels; ++level)
        mapped[level] = 255 * interpolated(curve, static_cast<double>(level) / 255);
    double difference = 0;
    forEachPair(ours, theirs, [&](std::uint8_t a, std::uint8_t b) { difference += std::abs(mapped[a] - b); });
    return difference;
}

} // namespace

std::optional<ToneCurves> fitToneCurve(const Bitmap& ours, const Bitmap& theirs)
{
    if (ours.width != theirs.width || ours.height != theirs.height || ours.bytes.empty())
        return std::nullopt;
    const auto pairs = pairsOf(ours, theirs);
    auto curve = curveThrough(risingFit(pairs));
    if (differenceThrough(curve, ours, theirs) >= pairs.difference - leastGain * pairs.total)
        return std::nullopt;
    return ToneCurves{.rgb = std::move(curve)};
}

} // namespace korvo
