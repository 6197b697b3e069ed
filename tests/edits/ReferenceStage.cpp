#include "tests/edits/ReferenceStage.h"

#include "edits/WhiteBalance.h"

#include <algorithm>
#include <cmath>

namespace korvo {

double luminance(const Color& c)
{
    return luminanceWeights[0] * c[0] + luminanceWeights[1] * c[1] + luminanceWeights[2] * c[2];
}

namespace {

Color times(double factor, const Color& c)
{
    return {factor * c[0], factor * c[1], factor * c[2]};
}

Color awayFromGrey(double factor, const Color& c)
{
    const double y = luminance(c);
    return {y + factor * (c[0] - y), y + factor * (c[1] - y), y + factor * (c[2] - y)};
}

double smoothStep(double t)
{
    t = std::clamp(t, 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

Color adjusted(const CIExposureAdjust& filter, const Color& c)
{
    return times(std::pow(2, filter.inputEV), c);
}

Color adjusted(const CIColorControls& filter, const Color& c)
{
    return awayFromGrey(filter.inputSaturation, c);
}

Color adjusted(const CIVibrance& filter, const Color& c)
{
    const auto [red, green, blue] = c;
    const double largest = std::max({red, green, blue}), smallest = std::min({red, green, blue});
    if (largest <= 0)
        return c;
    double skin = 0;
    if (red == largest && largest > smallest) {
        const double distance = ((green - blue) / (largest - smallest) - 0.30) / 0.40;
        skin = std::max(0.0, 1 - distance * distance);
    }
    const double greyness = std::max(smallest, 0.0) / largest;
    return awayFromGrey(1 + filter.inputAmount * greyness * (1 - 0.6 * skin * skin), c);
}

Color adjusted(const CITemperatureAndTint& filter, const Color& c)
{
    return whiteBalanceMatrix(filter) * c;
}

Color adjusted(const CIHighlightShadowAdjust& filter, const Color& c)
{
    const double root = std::sqrt(std::clamp(luminance(c), 0.0, 1.0));
    const double shadows = 2.3 * filter.inputShadowAmount.value_or(0) * (1 - smoothStep(root));
    const double highlights
        = 0.5 * (filter.inputHighlightAmount.value_or(1) - 1) * smoothStep((root - 0.10) / 0.75);
    return times(std::pow(2, shadows + highlights), c);
}

void apply(const auto& filter, LinearImage& image)
{
    for (std::size_t i = 0; i < image.pixels(); ++i) {
        const Color c = adjusted(filter, colorAt(image, i));
        image.red[i] = static_cast<float>(c[0]);
        image.green[i] = static_cast<float>(c[1]);
        image.blue[i] = static_cast<float>(c[2]);
    }
}

void apply(const CISharpenLuminance& filter, LinearImage& image)
{
    static constexpr std::array weights{0.472126, 0.234391, 0.028681, 0.000865};
    const LinearImage original = image;
    const auto root = [&](int x, int y) {
        x = std::clamp(x, 0, image.width - 1);
        y = std::clamp(y, 0, image.height - 1);
        return std::sqrt(
            std::max(0.0, luminance(colorAt(original, original.offset(y) + static_cast<std::size_t>(x)))));
    };
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const double sharp = root(x, y);
            if (sharp == 0)
                continue;
            double soft = 0;
            for (int dy = -3; dy <= 3; ++dy)
                for (int dx = -3; dx <= 3; ++dx)
                    soft += weights[static_cast<std::size_t>(std::abs(dx))]
                        * weights[static_cast<std::size_t>(std::abs(dy))] * root(x + dx, y + dy);
            const double q = std::clamp(1 + 2 * filter.inputSharpness * (sharp - soft) / sharp, 0.5, 2.0);
            const std::size_t i = image.offset(y) + static_cast<std::size_t>(x);
            for (auto* plane : {&image.red, &image.green, &image.blue})
                (*plane)[i] = static_cast<float>((*plane)[i] * q * q);
        }
}

} // namespace

LinearImage referenceStage(const std::vector<BasicFilter>& filters, LinearImage image)
{
    for (const BasicFilter& filter : filters)
        std::visit([&](const auto& known) { apply(known, image); }, filter);
    return image;
}

LinearImage imageOf(const std::vector<std::array<double, 3>>& colors, int width)
{
    LinearImage image(width, static_cast<int>(colors.size()) / width);
    for (std::size_t i = 0; i < image.pixels(); ++i) {
        image.red[i] = static_cast<float>(colors[i][0]);
        image.green[i] = static_cast<float>(colors[i][1]);
        image.blue[i] = static_cast<float>(colors[i][2]);
    }
    return image;
}

std::array<double, 3> colorAt(const LinearImage& image, std::size_t pixel)
{
    return {image.red[pixel], image.green[pixel], image.blue[pixel]};
}

} // namespace korvo
