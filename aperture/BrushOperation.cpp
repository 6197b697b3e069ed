#include "aperture/BrushOperation.h"

#include "aperture/AdjustmentOperation.h"

#include <algorithm>

namespace korvo {

namespace {

using Q = QuickBrush;

constexpr BrushOperation quickBrushOperations[]{
    {"DGGNGDodgeOperation", Q::dodge},
    {"DGGNGBurnOperation", Q::burn},
    {"DGGNGSaturateOperation", Q::saturate},
    {"DGGNGDesaturateOperation", Q::desaturate},
    {"DGGNGContrastOperation", Q::contrast},
    {"DGGNGVibrancyOperation", Q::vibrancy},
    {"DGGNGBlurOperation", Q::blur},
    {"DGGNGBrushedBlurOperation", Q::blur},
    {"DGGNGSkinSmoothingOperation", Q::skinSmoothing},
    {"DGGNGHaloReductionOperation", {}},
    {"DGGNGNoiseReductionOperation", Q::noiseReduction},
    {"DGGNGSharpenOperation", Q::sharpen, 0, "inputSharpness"},
    {"DGGNGDefinitionOperation", Q::definition},
    {"DGGNGMultiplyOperation", Q::polarize, 0.5},
    {"DGGNGOverlayBlendOperation", Q::intensifyContrast, 0.5},
};

double amount(const BrushOperation& operation, const AdjustmentParameters& parameters)
{
    for (const auto key : {operation.ownKey, std::string_view("inputIntensity"),
             std::string_view("inputAmount"), std::string_view("inputRadius")})
        if (const auto number = parameters.number(key))
            return *number;
    return operation.usualAmount;
}

template <typename T>
T& present(std::optional<T>& field)
{
    return field ? *field : field.emplace();
}

} // namespace

std::span<const BrushOperation> brushOperations()
{
    return quickBrushOperations;
}

std::optional<PhotoEdits> brushEffect(const BrushOperation& operation, const AdjustmentParameters& parameters)
{
    auto value = amount(operation, parameters);
    PhotoEdits effect;
    if (!operation.brush) {
        effect.chromaticAberration = ChromaticAberration{value, value};
        return value != 0 ? std::optional(effect) : std::nullopt;
    }
    const auto& range = slider(*operation.brush);
    if (value < range.lower) // a share of the effect where the slider starts at 1
        value += range.lower;
    if (value <= range.neutral())
        return std::nullopt;
    range.setValue(effect, std::min(value, range.upper));
    return effect;
}

BrushLayer brushLayer(const BrushOperation& operation, PhotoEdits effect)
{
    BrushLayer layer;
    if (operation.brush)
        layer.quickBrush = nameOf(*operation.brush);
    else
        layer.brick = nameOf(AdjustmentBrick::chromaticAberration);
    layer.edits = std::move(effect);
    return layer;
}

void merge(PhotoEdits& edits, const PhotoEdits& effect)
{
    assignFinite(edits.exposure, edits.exposure + effect.exposure);
    assignFinite(edits.contrast, edits.contrast * effect.contrast);
    assignFinite(edits.saturation, edits.saturation * effect.saturation);
    assignFinite(edits.vibrance, edits.vibrance + effect.vibrance);
    if (const auto& noise = effect.noiseReduction) {
        auto& radius = present(edits.noiseReduction).radius;
        radius = std::max(radius, noise->radius);
    }
    if (const auto& aberration = effect.chromaticAberration) {
        auto& whole = present(edits.chromaticAberration);
        assignFinite(whole.redCyan, whole.redCyan + aberration->redCyan);
        assignFinite(whole.blueYellow, whole.blueYellow + aberration->blueYellow);
    }
}

} // namespace korvo
