#include "edits/RowKernels.h"

#include "platform/ColorMatrix.h"
#include "platform/Srgb.h"

#include <cstring>

// This file is compiled once for each instruction set. Two are left out that would gain nothing.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "edits/RowKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace korvo::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
using Floats = hn::ScalableTag<float>;
using Words = hn::ScalableTag<std::uint32_t>;
using Ints = hn::ScalableTag<std::int32_t>;
using V = hn::Vec<Floats>;
using W = hn::Vec<Words>;
constexpr Floats floats;
constexpr Words words;
constexpr Ints ints;

HWY_INLINE V all(float value)
{
    return hn::Set(floats, value);
}

// --- What is done to a pixel -------------------------------------------------------------------------------

HWY_INLINE V luminance(V r, V g, V b)
{
    const V red = hn::Mul(all(static_cast<float>(luminanceWeights[0])), r);
    const V redGreen = hn::MulAdd(all(static_cast<float>(luminanceWeights[1])), g, red);
    return hn::MulAdd(all(static_cast<float>(luminanceWeights[2])), b, redGreen);
}

HWY_INLINE V dot(const float* weights, V r, V g, V b)
{
    return hn::MulAdd(all(weights[0]), r, hn::MulAdd(all(weights[1]), g, hn::Mul(all(weights[2]), b)));
}

HWY_INLINE void transform(const BasicPlan::Matrix& matrix, V& r, V& g, V& b)
{
    const V red = dot(&matrix[0], r, g, b), green = dot(&matrix[3], r, g, b);
    b = dot(&matrix[6], r, g, b);
    r = red;
    g = green;
}

/// Moves colours away from grey, weak ones most: k = 1 + amount * (smallest / largest channel), and around
/// the hue of skin only 40 % of it. Luminance stays; what is black, grey, saturated or out of gamut stays
/// whole.
HWY_INLINE void vibrance(float amount, V& r, V& g, V& b)
{
    const V largest = hn::Max(r, hn::Max(g, b)), smallest = hn::Min(r, hn::Min(g, b));
    const V range = hn::Sub(largest, smallest);
    const V reciprocal = hn::Div(all(1), hn::Mul(largest, range)); // one division for two
    const V hue = hn::Mul(hn::Mul(hn::Sub(g, b), largest), reciprocal); // from red to yellow
    const V offset = hn::Mul(hn::Sub(hue, all(0.30F)), all(1 / 0.40F));
    const V window = hn::Max(all(0), hn::NegMulAdd(offset, offset, all(1)));
    const V skin = hn::IfThenElseZero(hn::Eq(r, largest), window);
    const V kept = hn::NegMulAdd(hn::Mul(all(0.6F), skin), skin, all(1));
    const V greyness = hn::Mul(hn::Mul(hn::Max(smallest, all(0)), range), reciprocal);
    const V more = hn::Mul(hn::Mul(all(amount), greyness), kept);
    // Below 1e-10 the product under the division is no longer a normal number.
    const auto colored = hn::And(hn::Gt(range, all(0)), hn::Gt(largest, all(1e-10F)));
    const V effect = hn::IfThenElseZero(colored, more);
    const V y = luminance(r, g, b);
    r = hn::MulAdd(effect, hn::Sub(r, y), r);
    g = hn::MulAdd(effect, hn::Sub(g, y), g);
    b = hn::MulAdd(effect, hn::Sub(b, y), b);
}

/// 2^x for |x| < 126, relative error below 2.4e-7: the whole part goes into the exponent.
HWY_INLINE V exp2(V x)
{
    const auto whole = hn::NearestInt(x);
    const V f = hn::Sub(x, hn::ConvertTo(floats, whole));
    V p = hn::MulAdd(all(0.001327647129073739F), f, all(0.009675541892647743F));
    p = hn::MulAdd(p, f, all(0.05550713092088699F));
    p = hn::MulAdd(p, f, all(0.24022120237350464F));
    p = hn::MulAdd(p, f, all(0.6931469440460205F));
    p = hn::MulAdd(p, f, all(1.0000001192092896F));
    return hn::BitCast(floats, hn::Add(hn::BitCast(ints, p), hn::ShiftLeft<23>(whole)));
}

/// t^2 (3 - 2t)
HWY_INLINE V smoothStep(V t, V square)
{
    return hn::Mul(square, hn::NegMulAdd(all(2), t, all(3)));
}

/// The gain of highlights and shadows at a luminance, by its square root clamped to 0..1.
HWY_INLINE V toneGain(const BasicPlan& plan, V y)
{
    const V light = hn::Min(hn::Max(y, all(0)), all(1));
    const V root = hn::Sqrt(light);
    const V shadow = hn::Sub(all(1), smoothStep(root, light));
    const V t = hn::Min(hn::Max(hn::Mul(hn::Sub(root, all(0.10F)), all(1 / 0.75F)), all(0)), all(1));
    const V highlight = smoothStep(t, hn::Mul(t, t));
    return exp2(hn::MulAdd(all(plan.shadowStops), shadow, hn::Mul(all(plan.highlightStops), highlight)));
}

// --- Rows --------------------------------------------------------------------------------------------------

template <bool Vibrance, bool Tone, bool Root>
void adjustRow(const BasicPlan& shared, std::size_t count, const ColorRow& row, float* root)
{
    const BasicPlan plan = shared; // a copy, which the stores below cannot be thought to change
    for (std::size_t i = 0; i < count; i += hn::Lanes(floats)) {
        V r = hn::LoadU(floats, row.red + i), g = hn::LoadU(floats, row.green + i),
          b = hn::LoadU(floats, row.blue + i);
        transform(plan.before, r, g, b);
        if constexpr (Vibrance) {
            vibrance(plan.vibrance, r, g, b);
            transform(plan.after, r, g, b);
        }
        V y = all(0);
        if constexpr (Tone || Root)
            y = luminance(r, g, b);
        if constexpr (Tone) {
            const V gain = toneGain(plan, y);
            r = hn::Mul(r, gain);
            g = hn::Mul(g, gain);
            b = hn::Mul(b, gain);
            y = hn::Mul(y, gain);
        }
        if constexpr (Root)
            hn::StoreU(hn::Sqrt(hn::Max(y, all(0))), floats, root + i);
        hn::StoreU(r, floats, row.red + i);
        hn::StoreU(g, floats, row.green + i);
        hn::StoreU(b, floats, row.blue + i);
    }
}

void adjust(const BasicPlan& plan, std::size_t count, const ColorRow& row, float* root)
{
    using Adjust = void (*)(const BasicPlan&, std::size_t, const ColorRow&, float*);
    static constexpr Adjust variants[2][2][2]{
        {{adjustRow<false, false, false>, adjustRow<false, false, true>},
            {adjustRow<false, true, false>, adjustRow<false, true, true>}},
        {{adjustRow<true, false, false>, adjustRow<true, false, true>},
            {adjustRow<true, true, false>, adjustRow<true, true, true>}},
    };
    variants[plan.hasVibrance][plan.hasTone][plan.hasSharpening](plan, count, row, root);
}

/// The weighted sum of seven vectors around `middle`.
HWY_INLINE V blurred(const std::array<float, 4>& weights, V middle, V one, V two, V three)
{
    const V outer = hn::MulAdd(all(weights[2]), two, hn::Mul(all(weights[3]), three));
    return hn::MulAdd(all(weights[0]), middle, hn::MulAdd(all(weights[1]), one, outer));
}

void blurAcross(const BasicPlan& plan, const float* const (&roots)[7], std::size_t count, float* result)
{
    const auto weights = plan.blur;
    const auto pair = [&](int a, int b, std::size_t i) HWY_ATTR {
        return hn::Add(hn::LoadU(floats, roots[a] + i), hn::LoadU(floats, roots[b] + i));
    };
    for (std::size_t i = 0; i < count; i += hn::Lanes(floats)) {
        const V middle = hn::LoadU(floats, roots[3] + i);
        hn::StoreU(blurred(weights, middle, pair(2, 4, i), pair(1, 5, i), pair(0, 6, i)), floats, result + i);
    }
}

void sharpen(
    const BasicPlan& plan, const float* root, const float* around, std::size_t count, const ColorRow& row)
{
    const auto weights = plan.blur;
    const float amount = plan.sharpness;
    for (std::size_t i = 0; i < count; i += hn::Lanes(floats)) {
        const float* middle = around + i;
        const auto pair = [&](std::ptrdiff_t d) HWY_ATTR {
            return hn::Add(hn::LoadU(floats, middle - d), hn::LoadU(floats, middle + d));
        };
        const V soft = blurred(weights, hn::LoadU(floats, middle), pair(1), pair(2), pair(3));
        const V sharp = hn::LoadU(floats, root + i);
        const V excess = hn::Div(hn::Sub(sharp, soft), sharp);
        const V wanted = hn::MulAdd(all(amount), excess, all(1));
        const V bounded = hn::Min(hn::Max(wanted, all(0.5F)), all(2));
        const V q = hn::IfThenElse(hn::Gt(sharp, all(0)), bounded, all(1));
        const V gain = hn::Mul(q, q);
        for (float* plane : {row.red, row.green, row.blue})
            hn::StoreU(hn::Mul(hn::LoadU(floats, plane + i), gain), floats, plane + i);
    }
}

// --- Bytes -------------------------------------------------------------------------------------------------
// Both ways are table look-ups, so that the last few pixels can be done one by one.

#if HWY_TARGET == HWY_SCALAR // has no vectors of four bytes
HWY_INLINE W loadPixels(const std::uint8_t* rgba)
{
    std::uint32_t pixel;
    std::memcpy(&pixel, rgba, sizeof pixel);
    return hn::Set(words, pixel);
}

HWY_INLINE void storePixels(W pixel, std::uint8_t* rgba)
{
    std::memcpy(rgba, &pixel.raw, sizeof pixel.raw);
}
#else
constexpr hn::Repartition<std::uint8_t, Words> bytes;

HWY_INLINE W loadPixels(const std::uint8_t* rgba)
{
    return hn::BitCast(words, hn::LoadU(bytes, rgba));
}

HWY_INLINE void storePixels(W pixels, std::uint8_t* rgba)
{
    hn::StoreU(hn::BitCast(bytes, pixels), bytes, rgba);
}
#endif

template <int Channel>
HWY_INLINE V channel(W pixels, const float* table)
{
    const W code = hn::And(hn::ShiftRight<8 * Channel>(pixels), hn::Set(words, 0xFF));
    return hn::GatherIndex(floats, table, hn::BitCast(ints, code));
}

/// Whether the alpha bytes of pixels that were combined by And are all 255.
HWY_INLINE bool isOpaque(W together)
{
    return hn::AllTrue(words, hn::Eq(hn::ShiftRight<24>(together), hn::Set(words, 0xFF)));
}

bool decode(const std::uint8_t* rgba, std::size_t count, const ColorRow& row)
{
    const float* const table = linearOfSrgb().data();
    const std::size_t lanes = hn::Lanes(floats), whole = count / lanes * lanes;
    W together = hn::Set(words, 0xFFFFFFFF);
    for (std::size_t i = 0; i < whole; i += lanes) {
        const W pixels = loadPixels(rgba + 4 * i);
        together = hn::And(together, pixels);
        hn::StoreU(channel<0>(pixels, table), floats, row.red + i);
        hn::StoreU(channel<1>(pixels, table), floats, row.green + i);
        hn::StoreU(channel<2>(pixels, table), floats, row.blue + i);
    }
    bool opaque = isOpaque(together);
    for (std::size_t i = whole; i < count; ++i) {
        row.red[i] = table[rgba[4 * i]];
        row.green[i] = table[rgba[4 * i + 1]];
        row.blue[i] = table[rgba[4 * i + 2]];
        opaque = opaque && rgba[4 * i + 3] == 0xFF;
    }
    return opaque;
}

HWY_INLINE W codes(V values, const SrgbSlots& table)
{
    const V low = all(SrgbSlots::lowest); // not by Max, which lets NaN pass on some processors
    const V bounded = hn::Min(hn::IfThenElse(hn::Gt(values, low), values, low), all(SrgbSlots::highest));
    const W bits = hn::Sub(hn::BitCast(words, bounded), hn::Set(words, SrgbSlots::firstBits));
    const auto slot = hn::BitCast(ints, hn::ShiftRight<16>(bits));
    const W entry = hn::GatherIndex(words, table.slots.data(), slot);
    return hn::ShiftRight<16>(hn::Add(entry, hn::And(bits, hn::Set(words, 0xFFFF))));
}

bool encode(const ColorRow& row, const std::uint8_t* source, std::size_t count, std::uint8_t* rgba)
{
    const SrgbSlots& table = srgbSlots();
    const std::size_t lanes = hn::Lanes(floats), whole = count / lanes * lanes;
    W together = hn::Set(words, 0xFFFFFFFF);
    for (std::size_t i = 0; i < whole; i += lanes) {
        const W red = codes(hn::LoadU(floats, row.red + i), table);
        const W green = hn::ShiftLeft<8>(codes(hn::LoadU(floats, row.green + i), table));
        const W blue = hn::ShiftLeft<16>(codes(hn::LoadU(floats, row.blue + i), table));
        const W original = loadPixels(source + 4 * i);
        together = hn::And(together, original);
        const W alpha = hn::And(original, hn::Set(words, 0xFF000000));
        const W pixels = hn::Or(hn::Or(red, green), hn::Or(blue, alpha));
        storePixels(pixels, rgba + 4 * i);
    }
    bool opaque = isOpaque(together);
    for (std::size_t i = whole; i < count; ++i) {
        rgba[4 * i] = srgbOfLinear(row.red[i], table);
        rgba[4 * i + 1] = srgbOfLinear(row.green[i], table);
        rgba[4 * i + 2] = srgbOfLinear(row.blue[i], table);
        rgba[4 * i + 3] = source[4 * i + 3];
        opaque = opaque && source[4 * i + 3] == 0xFF;
    }
    return opaque;
}

const RowKernels& kernels()
{
    static constexpr RowKernels table{decode, adjust, blurAcross, sharpen, encode};
    return table;
}

} // namespace
} // namespace korvo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvo {

HWY_EXPORT(kernels);

const RowKernels& rowKernels()
{
    return HWY_DYNAMIC_DISPATCH(kernels)();
}

} // namespace korvo
#endif
