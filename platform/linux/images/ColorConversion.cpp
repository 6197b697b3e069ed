#include "platform/linux/images/ColorConversion.h"

#include "platform/ColorMatrix.h"
#include "platform/Srgb.h"
#include "platform/linux/images/IccProfiles.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace korvo {

namespace {

using Model = RowFormat::Model;
using Alpha = RowFormat::Alpha;
using Depth = RowFormat::Depth;

cmsColorSpaceSignature spaceOf(Model model)
{
    switch (model) {
    case Model::grey:
        return cmsSigGrayData;
    case Model::rgb:
        return cmsSigRgbData;
    case Model::cmyk:
        return cmsSigCmykData;
    }
    return {};
}

constexpr std::array colorantTags{cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag};

/// The columns of a profile that has them: what each of its colours is in XYZ under its white, D50.
ColorMatrix colorants(cmsHPROFILE profile)
{
    ColorMatrix matrix{};
    std::size_t column = 0;
    for (const auto tag : colorantTags) {
        const auto* const xyz = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile, tag));
        matrix[column] = xyz->X;
        matrix[column + 3] = xyz->Y;
        matrix[column + 6] = xyz->Z;
        ++column;
    }
    return matrix;
}

/// Linear RGB of the profile to linear sRGB.
ColorMatrix toSrgb(cmsHPROFILE profile)
{
    static const ColorMatrix fromXYZ = inverse(colorants(gammaProfile(srgbPrimaries, 1).get()));
    return fromXYZ * colorants(profile);
}

const cmsToneCurve* curveOf(cmsHPROFILE profile, Model model, std::size_t channel)
{
    constexpr std::array tags{cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
    return static_cast<const cmsToneCurve*>(
        cmsReadTag(profile, model == Model::grey ? cmsSigGrayTRCTag : tags[channel]));
}

/// Whether a profile is three curves and a matrix, or one curve of grey, and nothing more.
bool isSimple(cmsHPROFILE profile, Model model)
{
    if (cmsIsTag(profile, cmsSigAToB0Tag) || cmsIsTag(profile, cmsSigAToB1Tag)
        || cmsGetPCS(profile) != cmsSigXYZData)
        return false;
    if (model == Model::grey)
        return curveOf(profile, model, 0) != nullptr;
    const auto isReadable = [&](cmsTagSignature tag) { return cmsReadTag(profile, tag) != nullptr; };
    return model == Model::rgb && cmsIsMatrixShaper(profile) && curveOf(profile, model, 0)
        && curveOf(profile, model, 1) && curveOf(profile, model, 2)
        && std::ranges::all_of(colorantTags, isReadable);
}

/// Whether a profile is sRGB's to within what 8 bits show.
bool isSrgb(cmsHPROFILE profile, Model model)
{
    if (!isSimple(profile, model))
        return false;
    for (std::size_t channel = 0; channel < (model == Model::rgb ? 3 : 1); ++channel)
        for (int step = 0; step <= 32; ++step) {
            const double value = step / 32.0;
            const double found
                = cmsEvalToneCurveFloat(curveOf(profile, model, channel), static_cast<float>(value));
            if (!(found >= decodedSrgb(value - 0.003) && found <= decodedSrgb(value + 0.003)))
                return false;
        }
    if (model == Model::grey)
        return true;
    const ColorMatrix matrix = toSrgb(profile);
    for (std::size_t i = 0; i < matrix.size(); ++i)
        if (!(std::abs(matrix[i] - (i % 4 == 0 ? 1 : 0)) <= 0.004))
            return false;
    return true;
}

cmsUInt32Number lcmsFormat(const RowFormat& format)
{
    const bool isReal = format.depth == Depth::real;
    const auto space = format.model == Model::grey ? PT_GRAY : format.model == Model::rgb ? PT_RGB : PT_CMYK;
    return static_cast<cmsUInt32Number>(FLOAT_SH(isReal) | COLORSPACE_SH(space)
        | EXTRA_SH(format.alpha != Alpha::none) | CHANNELS_SH(format.colors())
        | BYTES_SH(format.depth == Depth::bits8 ? 1
                : format.depth == Depth::bits16 ? 2
                                                : 4));
}

/// By lcms2 to sRGB; null for profiles that it cannot use.
cmsHTRANSFORM transformOf(
    cmsHPROFILE profile, const RowFormat& format, ColorConversion::Target target, cmsUInt32Number flags)
{
    const bool isLinear = target == ColorConversion::Target::linear;
    const IccProfile srgb = isLinear ? gammaProfile(srgbPrimaries, 1) : IccProfile(cmsCreate_sRGBProfile());
    return cmsCreateTransform(profile, lcmsFormat(format), srgb.get(), isLinear ? TYPE_RGB_FLT : TYPE_RGBA_8,
        INTENT_RELATIVE_COLORIMETRIC, flags);
}

/// Whether a profile is one of a device or a colour space; links between two, and effects, say nothing of a
/// picture's colours (ICC.1:2022, 7.2.7).
bool describesColors(cmsHPROFILE profile)
{
    constexpr std::array classes{
        cmsSigInputClass, cmsSigDisplayClass, cmsSigOutputClass, cmsSigColorSpaceClass};
    return std::ranges::find(classes, cmsGetDeviceClass(profile)) != classes.end();
}

/// Whether colours of this format can be converted by the profile: it may be of other colours, or be no more
/// than a header.
bool isUsable(cmsHPROFILE profile, const RowFormat& format)
{
    if (cmsGetColorSpace(profile) != spaceOf(format.model) || !describesColors(profile))
        return false;
    if (isSimple(profile, format.model))
        return true;
    const auto tried = transformOf(profile, format, ColorConversion::Target::linear, cmsFLAGS_NOOPTIMIZE);
    if (tried)
        cmsDeleteTransform(tried);
    return tried != nullptr;
}

/// The picture's profile, if it has one that can be used.
IccProfile profileOf(const PictureInfo& picture)
{
    if (picture.profile.empty() && picture.isAdobeRGB && picture.format.model == Model::rgb)
        return gammaProfile(adobePrimaries, 563.0 / 256);
    if (picture.profile.empty())
        return {};
    IccProfile profile(
        cmsOpenProfileFromMem(picture.profile.data(), static_cast<cmsUInt32Number>(picture.profile.size())));
    if (profile && !isUsable(profile.get(), picture.format))
        profile.reset();
    return profile;
}

/// A stored number from 0 to 1.
float fraction(std::uint8_t number)
{
    return static_cast<float>(number) / 255;
}
float fraction(std::uint16_t number)
{
    return static_cast<float>(number) / 65535;
}
float fraction(float number)
{
    return number;
}

std::uint8_t byteOf(std::uint8_t number)
{
    return number;
}
std::uint8_t byteOf(std::uint16_t number)
{
    return static_cast<std::uint8_t>((number * 255U + 32895U) >> 16);
}
std::uint8_t byteOf(float number)
{
    return static_cast<std::uint8_t>(std::lround(255 * std::clamp(number, 0.0F, 1.0F)));
}

/// Calls `visit` with the row as numbers of its depth.
template <typename Visit>
void withNumbers(Depth depth, std::uint8_t* row, Visit visit)
{
    if (depth == Depth::bits8)
        visit(row);
    else if (depth == Depth::bits16)
        visit(reinterpret_cast<std::uint16_t*>(row));
    else
        visit(reinterpret_cast<float*>(row));
}

/// Paper seen through inks, where no profile tells more.
template <typename Number>
float inked(const Number* inks, int channel)
{
    return (1 - fraction(inks[channel])) * (1 - fraction(inks[3]));
}

template <typename Number>
std::uint8_t byteAt(const Number* pixel, int channel, const RowFormat& format)
{
    if (format.model == Model::cmyk)
        return byteOf(inked(pixel, channel));
    const auto number = pixel[format.model == Model::grey ? 0 : channel];
    return format.isLinear ? srgbOfLinear(fraction(number)) : byteOf(number);
}

template <typename Number>
void colorBytes(const Number* row, std::uint8_t* rgba, int width, const RowFormat& format)
{
    for (int x = 0; x < width; ++x, row += format.channels(), rgba += 4)
        for (int channel = 0; channel < 3; ++channel)
            rgba[channel] = byteAt(row, channel, format);
}

bool isSeeThrough(const RowFormat& format)
{
    return format.alpha == Alpha::straight || format.alpha == Alpha::premultiplied;
}

/// Whether the row's numbers are a bitmap's, which dividing and multiplying by alpha would only blur.
bool holdsBitmap(const RowFormat& format)
{
    return format.alpha == Alpha::premultiplied && format.depth == Depth::bits8 && !format.isLinear
        && format.model != Model::cmyk;
}

enum class Colors { straight, premultiplied };

/// Puts the row's alpha into a row of RGBA bytes, and multiplies the colours by it if they are straight.
template <typename Number>
void takeAlpha(const Number* row, std::uint8_t* rgba, int width, const RowFormat& format, Colors colors)
{
    row += format.colors();
    for (int x = 0; x < width; ++x, row += format.channels(), rgba += 4) {
        rgba[3] = isSeeThrough(format) ? byteOf(*row) : 255;
        for (int channel = 0; rgba[3] < 255 && channel < 3; ++channel)
            rgba[channel] = colors == Colors::premultiplied
                ? std::min(rgba[channel], rgba[3])
                : static_cast<std::uint8_t>((rgba[channel] * rgba[3] + 127) / 255);
    }
}

template <typename Number>
void divideByAlpha(Number* row, int width, const RowFormat& format)
{
    constexpr bool isReal = std::is_same_v<Number, float>;
    constexpr float most = isReal ? 1 : static_cast<float>(std::numeric_limits<Number>::max());
    for (int x = 0; x < width; ++x, row += format.channels())
        for (int channel = 0; channel < format.colors(); ++channel) {
            const float alpha = fraction(row[format.colors()]);
            const float colour = alpha > 0 ? static_cast<float>(row[channel]) / alpha : 0;
            row[channel] = static_cast<Number>(isReal ? colour : std::min(colour + 0.5F, most));
        }
}

} // namespace

bool ColorConversion::isBitmap(const PictureInfo& picture)
{
    return picture.format.alpha == Alpha::unused && picture.format.model == Model::rgb && fitsBitmap(picture);
}

bool ColorConversion::fitsBitmap(const PictureInfo& picture)
{
    if (picture.format.depth != Depth::bits8 || picture.format.isLinear
        || picture.format.model == Model::cmyk)
        return false;
    const auto profile = profileOf(picture);
    return !profile || isSrgb(profile.get(), picture.format.model);
}

ColorConversion::ColorConversion(const PictureInfo& picture, Target target) : format_(picture.format)
{
    const auto profile = profileOf(picture);
    auto* const applied = profile && !isSrgb(profile.get(), format_.model) ? profile.get() : nullptr;
    const bool takesTables
        = target == Target::linear && format_.depth != Depth::real && format_.model != Model::cmyk;
    const bool fitsTables = takesTables && (!applied || isSimple(applied, format_.model));
    if (applied && !fitsTables) // by a profile that lcms2 refuses after all nothing is converted
        transform_.reset(transformOf(applied, format_, target, cmsFLAGS_BLACKPOINTCOMPENSATION));
    if (takesTables && !transform_)
        makeTables(fitsTables ? applied : nullptr);
}

void ColorConversion::makeTables(cmsHPROFILE profile)
{
    const std::size_t size = format_.depth == Depth::bits8 ? 256 : 65536;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        if (channel > 0 && (!profile || format_.model == Model::grey)) {
            tables_[channel] = tables_[0];
            continue;
        }
        const auto* const curve = profile ? curveOf(profile, format_.model, channel) : nullptr;
        tables_[channel].resize(size);
        for (std::size_t i = 0; i < size; ++i) {
            const double value = double(i) / double(size - 1);
            tables_[channel][i] = curve ? cmsEvalToneCurveFloat(curve, static_cast<float>(value))
                                        : static_cast<float>(format_.isLinear ? value : decodedSrgb(value));
        }
    }
    hasMatrix_ = profile && format_.model == Model::rgb;
    if (hasMatrix_)
        std::ranges::transform(
            toSrgb(profile), matrix_.begin(), [](double value) { return static_cast<float>(value); });
}

void ColorConversion::toBitmap(std::uint8_t* row, std::uint8_t* rgba, int width)
{
    const auto colors = !transform_ && holdsBitmap(format_) ? Colors::premultiplied : Colors::straight;
    withNumbers(format_.depth, row, [&](auto* numbers) {
        if (format_.alpha == Alpha::premultiplied && colors == Colors::straight)
            divideByAlpha(numbers, width, format_);
        if (transform_)
            cmsDoTransform(transform_.get(), row, rgba, static_cast<cmsUInt32Number>(width));
        else
            colorBytes(numbers, rgba, width, format_);
        takeAlpha(numbers, rgba, width, format_, colors);
    });
}

void ColorConversion::toLinear(std::uint8_t* row, float* rgba, int width)
{
    if (format_.alpha == Alpha::premultiplied)
        withNumbers(format_.depth, row, [&](auto* numbers) { divideByAlpha(numbers, width, format_); });
    if (transform_) {
        colors_.resize(3 * static_cast<std::size_t>(width));
        cmsDoTransform(transform_.get(), row, colors_.data(), static_cast<cmsUInt32Number>(width));
    }
    withNumbers(format_.depth, row, [&](const auto* numbers) { numbersToLinear(numbers, rgba, width); });
}

template <typename Number>
void ColorConversion::numbersToLinear(const Number* row, float* rgba, int width) const
{
    for (int x = 0; x < width; ++x, row += format_.channels(), rgba += 4) {
        if (transform_)
            std::copy_n(&colors_[3 * static_cast<std::size_t>(x)], 3, rgba);
        else
            for (int channel = 0; channel < 3; ++channel)
                rgba[channel] = light(row, channel);
        if (hasMatrix_) {
            const float red = rgba[0], green = rgba[1], blue = rgba[2];
            for (std::size_t i = 0; i < 3; ++i)
                rgba[i] = matrix_[3 * i] * red + matrix_[3 * i + 1] * green + matrix_[3 * i + 2] * blue;
        }
        rgba[3] = isSeeThrough(format_) ? fraction(row[format_.colors()]) : 1;
    }
}

template <typename Number>
float ColorConversion::light(const Number* pixel, int channel) const
{
    if (format_.model == Model::cmyk)
        return decodedSrgb(inked(pixel, channel));
    const auto number = pixel[format_.model == Model::grey ? 0 : channel];
    if constexpr (std::is_same_v<Number, float>)
        return format_.isLinear ? number : decodedSrgb(number);
    else
        return tables_[static_cast<std::size_t>(channel)][number];
}

} // namespace korvo
