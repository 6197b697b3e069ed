#include "aperture/AdjustmentGeometry.h"

#include <algorithm>
#include <utility>

namespace korvo {

namespace {

using Value = BinaryPlist::Value;
using Photo = ApertureTranslator::Photo;
using enum TranslationOutcome;

constexpr std::size_t mostSpots = 10'000;

struct Size {
    double width;
    double height;
};

std::optional<Size> masterSize(const Photo& photo)
{
    if (photo.masterWidth <= 0 || photo.masterHeight <= 0)
        return std::nullopt;
    return Size{static_cast<double>(photo.masterWidth), static_cast<double>(photo.masterHeight)};
}

CropRect turned(CropRect rect, std::int64_t degrees)
{
    for (auto quarters = (degrees / 90 % 4 + 4) % 4; quarters > 0; --quarters)
        rect = {1 - rect.y - rect.h, rect.x, rect.h, rect.w};
    return rect;
}

/// Moves a span's start into 0...1, and shortens the span to what lies there.
void clip(double& start, double& length)
{
    const auto inside = std::clamp(start, 0.0, 1.0);
    length = std::min(length + std::min(start, 0.0), 1 - inside);
    start = inside;
}

/// A value of a stroke, inside its "brushStroke" or beside it.
const Value* strokeValue(const Value& stroke, std::string_view key)
{
    const auto* const inner = stroke.member("brushStroke");
    const auto* const found = inner ? inner->member(key) : nullptr;
    return found ? found : stroke.member(key);
}

std::optional<double> strokeNumber(const Value& stroke, std::string_view key)
{
    const auto* const found = strokeValue(stroke, key);
    return found ? finiteNumber(*found) : std::nullopt;
}

std::optional<RetouchSpot> spot(const Value& stroke, const Size& size)
{
    const auto x = strokeNumber(stroke, "xLocation");
    const auto y = strokeNumber(stroke, "yLocation");
    const auto radius = strokeNumber(stroke, "radius");
    if (!x || !y || radius.value_or(0) <= 0)
        return std::nullopt;
    const auto* const source = strokeValue(stroke, "sourceOffset");
    const auto offset = (source ? pointIn(*source) : std::nullopt).value_or(CurvePoint());
    return RetouchSpot{
        .x = *x / size.width,
        .y = (size.height - *y) / size.height,
        .radius = *radius / size.width,
        .dx = offset.x / size.width,
        .dy = (0 - offset.y) / size.height,
    };
}

} // namespace

TranslationOutcome translateCrop(const AdjustmentParameters& p, const Photo& photo, PhotoEdits& edits)
{
    const auto width = p("inputWidth");
    const auto height = p("inputHeight");
    if (width <= 0 || height <= 0)
        return translated;
    const auto size = masterSize(photo);
    if (!size)
        return unsupported;
    auto rect
        = turned({p("inputXOrigin") / size->width, (size->height - p("inputYOrigin") - height) / size->height,
                     width / size->width, height / size->height},
            photo.rotation);
    clip(rect.x, rect.w);
    clip(rect.y, rect.h);
    if (rect.w <= 0 || rect.h <= 0)
        return unsupported;
    edits.crop = rect;
    return translated;
}

TranslationOutcome translateRetouch(const AdjustmentParameters& p, const Photo& photo, PhotoEdits& edits)
{
    const auto* const list = p.value("inputStrokes");
    const auto size = masterSize(photo);
    if (!size || !list || list->kind() != Value::Kind::array)
        return unsupported;
    auto spots = std::exchange(edits.retouches, std::nullopt).value_or(std::vector<RetouchSpot>());
    const auto strokes = list->elements();
    const auto before = spots.size();
    for (const auto& stroke : strokes.first(std::min(strokes.size(), mostSpots - before)))
        if (const auto found = spot(stroke, *size))
            spots.push_back(*found);
    const auto added = spots.size() - before;
    if (!spots.empty())
        edits.retouches = std::move(spots);
    return added == strokes.size() ? translated : added > 0 ? approximated : unsupported;
}

} // namespace korvo
