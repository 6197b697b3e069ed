#include "edits/QuickBrush.h"

#include <algorithm>
#include <array>

namespace korvo {

namespace {

using enum SliderSpec::Direction;

constexpr EditField noiseRadius{
    [](const PhotoEdits& edits) { return edits.noiseReduction.value_or(NoiseReduction()).radius; },
    [](PhotoEdits& edits, double value) {
        if (!edits.noiseReduction)
            edits.noiseReduction.emplace();
        edits.noiseReduction->radius = value;
    },
};

struct Entry {
    QuickBrush brush;
    std::string_view title;
    SliderSpec slider;
};

using Q = QuickBrush;
using E = PhotoEdits;

constexpr std::array entries{
    Entry{Q::skinSmoothing, "Skin Smoothing", {"Amount", 0, 6, noiseRadius}},
    Entry{Q::dodge, "Dodge (Lighten)", {"Amount", 0, 2, plainField<&E::exposure>}},
    Entry{Q::burn, "Burn (Darken)", {"Amount", 0, 2, plainField<&E::exposure>, 0, falling}},
    Entry{Q::polarize, "Polarize (Multiply)", {"Intensity", 0, 1, optionalField<&E::polarize>}},
    Entry{Q::intensifyContrast, "Intensify Contrast (Overlay)",
        {"Intensity", 0, 1, optionalField<&E::intensifyContrast>}},
    Entry{Q::saturate, "Saturate", {"Amount", 1, 3, plainField<&E::saturation>}},
    Entry{Q::desaturate, "Desaturate", {"Amount", 0, 1, plainField<&E::saturation>, 1, falling}},
    Entry{Q::sharpen, "Sharpen", {"Intensity", 0, 1, plainField<&E::sharpness>}},
    Entry{Q::blur, "Blur", {"Amount", 0, 10, noiseRadius}},
    Entry{Q::noiseReduction, "Noise Reduction", {"Radius", 0, 4, noiseRadius}},
    Entry{Q::definition, "Definition", {"Amount", 0, 1, optionalField<&E::definition>}},
    Entry{Q::vibrancy, "Vibrancy", {"Amount", 0, 1, plainField<&E::vibrance>}},
    Entry{Q::contrast, "Contrast", {"Amount", 0, 1, plainField<&E::contrast>, 1}},
};

static_assert(entries.size() == casesOf<QuickBrush>.size());

const Entry& entryOf(QuickBrush brush)
{
    return *std::find_if(
        entries.begin(), entries.end(), [=](const Entry& entry) { return entry.brush == brush; });
}

} // namespace

// The falling slider is read by subtracting from the origin, so that it shows 0 and never -0.
double SliderSpec::value(const PhotoEdits& edits) const
{
    const double written = field.get(edits);
    return direction == rising ? written - origin : origin - written;
}

void SliderSpec::setValue(PhotoEdits& edits, double sliderValue) const
{
    field.set(edits, direction == rising ? origin + sliderValue : origin - sliderValue);
}

std::string_view title(QuickBrush brush)
{
    return entryOf(brush).title;
}

const SliderSpec& slider(QuickBrush brush)
{
    return entryOf(brush).slider;
}

} // namespace korvo
