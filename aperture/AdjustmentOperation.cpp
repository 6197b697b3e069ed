#include "aperture/AdjustmentOperation.h"

#include "aperture/AdjustmentGeometry.h"

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

using Value = BinaryPlist::Value;
using Photo = ApertureTranslator::Photo;
using P = AdjustmentParameters;
using E = PhotoEdits;
using B = AdjustmentBrick;
using enum TranslationOutcome;

/// Sets a field that only one adjustment can have: an earlier one is lost.
template <typename T>
TranslationOutcome replace(std::optional<T>& field, T value)
{
    const bool isFirst = !field;
    field = std::move(value);
    return isFirst ? translated : approximated;
}

TranslationOutcome nothing(const P&, const Photo&, E&)
{
    return translated;
}

TranslationOutcome exposure(const P& p, const Photo&, E& edits)
{
    assignFinite(edits.exposure, edits.exposure + p("inputEV"));
    if (const auto recovery = p("inputRecoveryEV"); recovery > 0)
        edits.recovery = std::min(recovery, 1.5);
    if (const auto bias = p("inputBias"); bias > 0.5)
        edits.blackPoint = std::min(bias, 50.0);
    if (const auto brightness = p("inputBrightness"); brightness != 0)
        edits.brightness = std::min(brightness, 1.0);
    return translated;
}

TranslationOutcome enhance(const P& p, const Photo&, E& edits)
{
    assignFinite(edits.contrast, edits.contrast * (p("inputContrast") + 1));
    assignFinite(edits.saturation, edits.saturation * p("inputSaturation", 1));
    assignFinite(edits.vibrance, edits.vibrance + p("inputVibrancy"));
    if (const auto definition = p("inputDefinition"); definition > 0)
        edits.definition = std::min(definition, 1.0);
    return translated;
}

TranslationOutcome whiteBalance(const P& p, const Photo& photo, E& edits)
{
    constexpr double usualTemperature = 5200;
    constexpr double kelvinPerUnit = 25;
    if (p.isTrue("inputIsDefaults"))
        return translated;
    const auto asShot = photo.asShot.temperature;
    const bool isKnown = asShot && std::isfinite(*asShot);
    const auto tint = photo.asShot.tint.value_or(0);
    edits.temperature = std::clamp(
        (p("inputTemperature") - (isKnown ? *asShot : usualTemperature)) / kelvinPerUnit, -100.0, 100.0);
    edits.tint = std::clamp(p("inputTint") - (std::isfinite(tint) ? tint : 0), -100.0, 100.0);
    return isKnown ? translated : approximated;
}

/// Adds to an amount of -1 to 1. One too small to be seen counts as none.
void accumulate(std::optional<double>& field, double amount)
{
    if (amount == 0)
        return;
    const auto sum = std::clamp(field.value_or(0) + amount, -1.0, 1.0);
    field = std::abs(sum) < 0.005 ? std::nullopt : std::optional(sum);
}

TranslationOutcome shadowsAndHighlights(const P& p, const Photo&, E& edits)
{
    accumulate(edits.shadows, p("inputShadowAmount") / 100);
    accumulate(edits.highlights, p("inputHighlightAmount") / 100);
    if (const auto midtones = p("inputMidtoneContrast"); midtones != 0)
        edits.midContrast = std::clamp(midtones / 100, -1.0, 1.0);
    return translated;
}

template <std::optional<Vignette> E::*Field>
TranslationOutcome vignette(const P& p, const Photo&, E& edits)
{
    return replace(edits.*Field, Vignette{p("inputIntensity"), p("inputRadius", 1)});
}

struct CurveList {
    std::string_view key;
    std::vector<CurvePoint> ToneCurves::*points;
};

constexpr CurveList curveLists[]{
    {"RGBCurvePoints", &ToneCurves::rgb},
    {"redCurvePoints", &ToneCurves::red},
    {"greenCurvePoints", &ToneCurves::green},
    {"blueCurvePoints", &ToneCurves::blue},
};

/// Appends the points of a list that can be read, at most 1,000; whether these are all.
bool readPoints(const Value& list, std::vector<CurvePoint>& points)
{
    constexpr std::size_t most = 1000;
    const auto elements = list.elements();
    for (const auto& element : elements.first(std::min(elements.size(), most)))
        if (const auto point = pointIn(element))
            points.push_back(*point);
    return list.kind() == Value::Kind::array && points.size() == elements.size();
}

TranslationOutcome curves(const P& p, const Photo&, E& edits)
{
    ToneCurves read;
    bool isComplete = true;
    for (const auto& [key, points] : curveLists)
        if (const auto* const list = p.value(key))
            isComplete = readPoints(*list, read.*points) && isComplete;
    if (read == ToneCurves())
        return unsupported;
    if (const auto gamma = p("gamma", 0.4545); std::abs(gamma - 1) >= 0.01)
        read.gamma = gamma;
    if (!edits.curves)
        edits.curves = std::move(read);
    else {
        if (!edits.moreCurves)
            edits.moreCurves.emplace();
        edits.moreCurves->push_back(std::move(read));
    }
    return isComplete ? translated : approximated;
}

struct LevelsPoint {
    std::string_view key; ///< the channel's name follows
    double LevelsChannel::*value;
    double neutral;
};

using L = LevelsChannel;

constexpr LevelsPoint levelsPoints[]{
    {"inputBlackSrc", &L::blackSrc, 0},
    {"inputBlackDst", &L::blackDst, 0},
    {"inputShadowSrc", &L::shadowSrc, 0.25},
    {"inputShadowDst", &L::shadowDst, 0.25},
    {"inputMidSrc", &L::midSrc, 0.5},
    {"inputMidDst", &L::midDst, 0.5},
    {"inputHilightSrc", &L::highlightSrc, 0.75},
    {"inputHilightDst", &L::highlightDst, 0.75},
    {"inputWhiteSrc", &L::whiteSrc, 1},
    {"inputWhiteDst", &L::whiteDst, 1},
};

LevelsChannel levelsChannel(const P& p, std::string_view name)
{
    LevelsChannel channel;
    for (const auto& [key, value, neutral] : levelsPoints)
        channel.*value = p(std::string(key).append(name), neutral);
    return channel;
}

TranslationOutcome levels(const P& p, const Photo&, E& edits)
{
    Levels read{levelsChannel(p, "RGB"), levelsChannel(p, "Red"), levelsChannel(p, "Green"),
        levelsChannel(p, "Blue"), std::nullopt};
    if (p("inputMode") == 1)
        read.luminance = true;
    return replace(edits.levels, std::move(read));
}

struct HueRange {
    std::string_view name;
    double hue; ///< degrees
};

constexpr HueRange hueRanges[]{
    {"Reds", 0},
    {"Yellows", 60},
    {"Greens", 120},
    {"Cyans", 180},
    {"Blues", 240},
    {"Magentas", 300},
};

ColorBand colorBand(const P& p, const HueRange& range)
{
    const auto value = [&](std::string_view what, double fallback) {
        return p(std::string("input").append(range.name).append(what), fallback);
    };
    return {value("HueBase", range.hue), value("HueShift", 0), value("Saturation", 0), value("Luminance", 0),
        value("Spread", 1)};
}

bool isVisible(const ColorBand& band)
{
    const auto largest
        = std::max({std::abs(band.hueShift), std::abs(band.saturation), std::abs(band.luminance)});
    return largest >= 0.01;
}

TranslationOutcome colorBands(const P& p, const Photo&, E& edits)
{
    std::vector<ColorBand> bands;
    for (const auto& range : hueRanges)
        bands.push_back(colorBand(p, range));
    return std::any_of(bands.begin(), bands.end(), isVisible) ? replace(edits.colorBands, std::move(bands))
                                                              : translated;
}

TranslationOutcome channelMixer(const P& p, const Photo&, E& edits)
{
    return replace(edits.bwMix,
        BWMix{p("inputRValue", 30) / 100, p("inputGValue", 59) / 100, p("inputBValue", 11) / 100});
}

TranslationOutcome monochrome(const P& p, const Photo&, E& edits)
{
    const auto* const color = p.value("inputColor");
    const auto [red, green, blue]
        = (color ? colorIn(*color) : std::nullopt).value_or(std::array{0.6, 0.45, 0.3});
    return replace(edits.monochrome, Monochrome{red, green, blue, p("inputIntensity", 1)});
}

TranslationOutcome sepia(const P& p, const Photo&, E& edits)
{
    return replace(edits.sepia, p("inputIntensity", 1));
}

template <std::optional<double> E::*Field>
TranslationOutcome blend(const P& p, const Photo&, E& edits)
{
    return replace(edits.*Field, p("inputIntensity", 0.5));
}

void sharpenBy(double amount, E& edits)
{
    assignFinite(edits.sharpness, std::min(edits.sharpness + amount, 1.0));
}

TranslationOutcome sharpen(const P& p, const Photo&, E& edits)
{
    sharpenBy(p("inputIntensity"), edits);
    return translated;
}

TranslationOutcome sharpenWhereBrushed(const P& p, const Photo&, E& edits)
{
    sharpenBy(p("inputSharpness"), edits);
    return translated;
}

TranslationOutcome sharpenEdges(const P& p, const Photo&, E& edits)
{
    edits.edgeSharpen = std::max(edits.edgeSharpen.value_or(0), std::min(p("inputSharpness"), 1.0));
    return translated;
}

TranslationOutcome define(const P& p, const Photo&, E& edits)
{
    double definition = edits.definition.value_or(0);
    assignFinite(definition, std::min(definition + p("inputIntensity"), 1.0));
    edits.definition = definition;
    return translated;
}

TranslationOutcome noiseReduction(const P& p, const Photo&, E& edits)
{
    return replace(edits.noiseReduction, NoiseReduction{p("inputRadius"), p("inputEdgeDetail")});
}

TranslationOutcome chromaticAberration(const P& p, const Photo&, E& edits)
{
    return replace(edits.chromaticAberration, ChromaticAberration{p("inputRedCyan"), p("inputBlueYellow")});
}

/// Aperture turns the other way.
TranslationOutcome straighten(const P& p, const Photo&, E& edits)
{
    const auto degrees = p("inputRotation");
    return degrees != 0 ? replace(edits.straighten, -degrees) : translated;
}

constexpr AdjustmentOperation wholePhotoOperations[]{
    {"RKRawDecodeOperation", nothing, {}},
    {"RKExposureOperation", exposure, B::exposure},
    {"RKEnhanceOperation", enhance, B::enhance},
    {"RKWhiteBalanceOperation", whiteBalance, B::whiteBalance},
    {"RKShadowHighlightOperation", shadowsAndHighlights, B::highlightsShadows},
    {"RKVignetteOperation", vignette<&E::vignette>, B::vignette},
    {"RKDevignetteOperation", vignette<&E::devignette>, B::devignette},
    {"RKCurvesOperation", curves, B::curves},
    {"RKLevelsOperation", levels, B::levels},
    {"RKColorOperation", colorBands, B::color},
    {"RKChannelMixerOperation", channelMixer, B::blackAndWhite},
    {"CIColorMonochrome", monochrome, B::colorMonochrome},
    {"CISepiaTone", sepia, B::sepia},
    {"DGGNGMultiplyOperation", blend<&E::polarize>, B::polarize},
    {"DGGNGOverlayBlendOperation", blend<&E::intensifyContrast>, B::intensifyContrast},
    {"RKSharpenOperation", sharpen, B::sharpen},
    {"DGGNGSharpenOperation", sharpenWhereBrushed, B::sharpen},
    {"RKProSharpenOperation", sharpenEdges, B::edgeSharpen},
    {"DGGNGDefinitionOperation", define, B::enhance},
    {"RKNoiseReductionOperation", noiseReduction, B::noiseReduction},
    {"DGChromaticAberrationOperation", chromaticAberration, B::chromaticAberration},
    {"RKStraightenCropOperation", straighten, {}},
    {"RKCropOperation", translateCrop, {}},
    {"RKRetouchOperation", translateRetouch, {}},
};

} // namespace

std::span<const AdjustmentOperation> adjustmentOperations()
{
    return wholePhotoOperations;
}

void assignFinite(double& field, double value)
{
    if (std::isfinite(value))
        field = value;
}

} // namespace korvo
