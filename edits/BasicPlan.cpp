#include "edits/BasicPlan.h"

#include "edits/WhiteBalance.h"

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

constexpr double fullSigma = 1.69 / 2; // the sharpening's default radius, taken as two sigma
constexpr double leastSigma = 0.35; // below it the neighbours weigh nothing

ColorMatrix saturationMatrix(double saturation)
{
    ColorMatrix result = identityMatrix;
    for (std::size_t i = 0; i < 9; ++i)
        result[i] = luminanceWeights[i % 3] + saturation * (result[i] - luminanceWeights[i % 3]);
    return result;
}

/// Far beyond what can be seen, and far from what floats cannot hold.
constexpr double largestAmount = 1000;

ColorMatrix scaled(double factor)
{
    return diagonal({factor, factor, factor});
}

BasicPlan::Matrix single(const ColorMatrix& matrix)
{
    BasicPlan::Matrix result;
    std::transform(
        matrix.begin(), matrix.end(), result.begin(), [](double entry) { return static_cast<float>(entry); });
    return result;
}

/// The centre is what the others leave of 1, so that a flat area stays as it is.
std::array<float, 4> gaussian(double sigma)
{
    std::array<double, 4> weight;
    for (std::size_t i = 0; i < weight.size(); ++i)
        weight[i] = std::exp(-static_cast<double>(i * i) / (2 * sigma * sigma));
    const double sum = weight[0] + 2 * (weight[1] + weight[2] + weight[3]);
    std::array<float, 4> result;
    for (std::size_t i = 1; i < weight.size(); ++i)
        result[i] = static_cast<float>(weight[i] / sum);
    result[0] = 1 - 2 * (result[1] + result[2] + result[3]);
    return result;
}

/// Takes in one filter after the other, in the order in which they are applied.
class PlanMaker {
public:
    explicit PlanMaker(double scale) : scale_(scale) { }

    void operator()(const CIExposureAdjust& filter)
    {
        const double gain = std::exp2(std::clamp(filter.inputEV, -20.0, 20.0));
        apply(scaled(gain), before_);
    }
    void operator()(const CIColorControls& filter)
    {
        apply(saturationMatrix(std::clamp(filter.inputSaturation, 0.0, largestAmount)), before_);
    }
    void operator()(const CIVibrance& filter)
    {
        plan_.hasVibrance = true;
        plan_.vibrance = static_cast<float>(std::clamp(filter.inputAmount, -1.0, 2.0));
    }
    void operator()(const CITemperatureAndTint& filter)
    {
        apply(whiteBalanceMatrix(filter), plan_.hasVibrance ? after_ : before_);
    }
    void operator()(const CIHighlightShadowAdjust& filter)
    {
        plan_.hasTone = true;
        const double highlights = std::clamp(filter.inputHighlightAmount.value_or(1), 0.0, 2.0);
        const double shadows = std::clamp(filter.inputShadowAmount.value_or(0), -1.0, 1.0);
        plan_.highlightStops = static_cast<float>(0.5 * (highlights - 1));
        plan_.shadowStops = static_cast<float>(2.3 * shadows);
    }
    void operator()(const CISharpenLuminance& filter)
    {
        const double sigma = fullSigma * std::min(scale_, 1.0);
        if (sigma < leastSigma)
            return;
        plan_.hasSharpening = true;
        plan_.sharpness
            = static_cast<float>(2 * std::clamp(filter.inputSharpness, -largestAmount, largestAmount));
        plan_.blur = gaussian(sigma);
    }

    BasicPlan plan() const
    {
        BasicPlan result = plan_;
        result.before = single(before_);
        result.after = single(after_);
        return result;
    }

private:
    void apply(const ColorMatrix& step, ColorMatrix& matrix)
    {
        matrix = step * matrix;
        plan_.hasMatrix = true;
    }

    double scale_;
    BasicPlan plan_;
    ColorMatrix before_ = identityMatrix;
    ColorMatrix after_ = identityMatrix;
};

} // namespace

BasicPlan basicPlan(const std::vector<BasicFilter>& filters, double scale)
{
    PlanMaker maker(scale);
    for (const BasicFilter& filter : filters)
        std::visit(maker, filter);
    return maker.plan();
}

} // namespace korvo
