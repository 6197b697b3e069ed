// The basic adjustments of 24 megapixels on two threads beside a plain render and beside one pass over
// memory; the histogram; auto enhance beside itself with a full sort.
//
//     bench_stage [render]      the render alone
#include "bench/edits/PlainRender.h"
#include "bench/support/Compare.h"
#include "edits/AutoEnhance.h"
#include "edits/BasicStage.h"
#include "edits/HistogramData.h"
#include "tests/support/SixSteps.h"

#include <fmt/format.h>

#include <oneapi/tbb/global_control.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace korvo::bench {

namespace {

constexpr int rounds = 9;

/// Slow waves with some noise.
Bitmap picture(int width, int height)
{
    Bitmap image(width, height);
    std::uint32_t noise = 1;
    for (std::size_t i = 0; i < image.bytes.size(); ++i) {
        noise = noise * 1664525U + 1013904223U;
        const auto wave = static_cast<unsigned>(128 + 60 * std::sin(static_cast<double>(i) * 1e-5));
        image.bytes[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(wave + (noise >> 28));
    }
    return image;
}

LinearImage linearPicture(int width, int height)
{
    LinearImage image(width, height);
    for (std::size_t i = 0; i < image.pixels(); ++i) {
        image.red[i] = static_cast<float>(i % 101) / 100;
        image.green[i] = static_cast<float>(i % 77) / 76;
        image.blue[i] = static_cast<float>(i % 31) / 30;
    }
    return image;
}

void benchRender()
{
    constexpr int width = 6000, height = 4000;
    const BasicPlan plan = basicPlan(basicFilters(sixSteps));
    const Bitmap image = picture(width, height);
    const LinearImage linear = linearPicture(width, height);
    Bitmap result = image, plain = image;
    LinearImage linearResult = linear;
    const std::vector<float> floats(std::size_t{4} * width * height, 0.5F);
    std::vector<float> others = floats;
    plainRender(image, plain); // makes its tables

    compare("24 megapixels, all six steps",
        {
            {"8 bits in and out", [&] { runBasicStage(plan, image, result); }},
            {"8 bits in and out, into new memory",
                [&] {
                    Bitmap fresh;
                    runBasicStage(plan, image, fresh);
                }},
            {"float in, 8 bits out", [&] { runBasicStage(plan, linear, result); }},
            {"float in and out", [&] { runBasicStage(plan, linear, linearResult); }},
            {"float RGBA read and written once", [&] { copyFloats(floats, others); }},
            {"plain loops, 8 bits in and out", [&] { plainRender(image, plain); }},
        },
        rounds);
}

void benchHistogram()
{
    const Bitmap image = picture(6000, 4000);
    double total = 0;
    const auto medians = compare(
        "Histogram of 24 megapixels", {{"one thread", [&] { total += histogram(image).red[0]; }}}, 99);
    fmt::print("  {:.3f} ms\n", 1e3 * medians[0]);
}

/// What auto enhance would do if it sorted the luminances.
double sortedSpread(const Bitmap& image)
{
    std::vector<double> luminances;
    for (const std::uint8_t* p = image.bytes.data(); p < image.bytes.data() + image.bytes.size(); p += 4)
        luminances.push_back(0.2126 * (p[0] / 255.0) + 0.7152 * (p[1] / 255.0) + 0.0722 * (p[2] / 255.0));
    std::sort(luminances.begin(), luminances.end());
    return luminances[luminances.size() * 19 / 20] - luminances[luminances.size() / 20];
}

void benchAutoEnhance()
{
    for (const int side : {512, 2048}) {
        const Bitmap image = picture(side, side);
        double total = 0;
        compare(fmt::format("Auto enhance of {0} x {0}", side),
            {
                {"all statistics", [&] { total += AutoEnhance::statistics(image)->highLuminance; }},
                {"the percentiles alone, by sorting", [&] { total += sortedSpread(image); }},
            },
            rounds);
    }
}

} // namespace

} // namespace korvo::bench

int main(int count, char** arguments)
{
    const tbb::global_control two(tbb::global_control::max_allowed_parallelism, 2);
    korvo::bench::benchRender();
    if (count > 1 && std::string_view(arguments[1]) == "render")
        return 0;
    korvo::bench::benchHistogram();
    korvo::bench::benchAutoEnhance();
}
