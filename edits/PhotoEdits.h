#pragma once

#include "base/Record.h"
#include "base/Uuid.h"
#include "edits/ToneCurves.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The non-destructive edit of a photo and the records inside it. Each is a plain value; its JSON has the
/// fields' names as keys, and an optional field that is not set is not there at all. Stored edits have no
/// version number: they stay readable because whatever is added later is optional.
namespace korvo {

struct BrushLayer;

/// A rectangle in fractions of the rotated and straightened image, 0 to 1, from its upper left corner.
struct CropRect {
    double x = 0;
    double y = 0;
    double w = 0;
    double h = 0;
};
KORVO_RECORD(CropRect, x, y, w, h)

struct RedEyeSpot {
    double x = 0;
    double y = 0;
    double radius = 0;
};
KORVO_RECORD(RedEyeSpot, x, y, radius)

/// One point of a brushed retouch trail.
struct RetouchPoint {
    double x = 0;
    double y = 0;
};
KORVO_RECORD(RetouchPoint, x, y)

/// One heal, clone or fill.
struct RetouchSpot {
    double x = 0; ///< the centre of the destination
    double y = 0;
    double radius = 0;
    double dx = 0; ///< from the spot to its source area
    double dy = 0;
    std::optional<double> softness; ///< the feather of the mask's edge
    std::optional<double> opacity;
    std::optional<bool> clone; ///< else heal
    std::optional<std::vector<RetouchPoint>> trail; ///< the path, for a brushed spot
    std::optional<bool> fill; ///< fill instead of a sourced copy
    std::optional<std::int64_t> variant; ///< which of the fill's variants was chosen
    std::optional<std::string> maskPath;
    std::optional<CropRect> maskBox; ///< the bounding box of the mask
};
KORVO_RECORD(
    RetouchSpot, x, y, radius, dx, dy, softness, opacity, clone, trail, fill, variant, maskPath, maskBox)

/// An adjustment of one range of hues.
struct ColorBand {
    double hueBase = 0;
    double hueShift = 0;
    double saturation = 0;
    double luminance = 0;
    double spread = 0;
};
KORVO_RECORD(ColorBand, hueBase, hueShift, saturation, luminance, spread)

struct Vignette {
    double intensity = 0;
    double radius = 0;
};
KORVO_RECORD(Vignette, intensity, radius)

/// The weights of the channels in a black-and-white conversion.
struct BWMix {
    double red = 0;
    double green = 0;
    double blue = 0;
};
KORVO_RECORD(BWMix, red, green, blue)

/// A tint and its strength.
struct Monochrome {
    double red = 0;
    double green = 0;
    double blue = 0;
    double intensity = 0;
};
KORVO_RECORD(Monochrome, red, green, blue, intensity)

struct NoiseReduction {
    double radius = 0;
    double edgeDetail = 0;
};
KORVO_RECORD(NoiseReduction, radius, edgeDetail)

struct ChromaticAberration {
    double redCyan = 0;
    double blueYellow = 0;
};
KORVO_RECORD(ChromaticAberration, redCyan, blueYellow)

/// The edit of one photo or of one local layer. As constructed it is the identity: no edit at all.
struct PhotoEdits {
    double exposure = 0; ///< EV
    double contrast = 1; ///< a factor, as is saturation
    double saturation = 1;
    double vibrance = 0;
    double temperature = 0;
    double tint = 0;
    double sharpness = 0;
    std::optional<std::vector<RetouchSpot>> retouches;
    std::optional<std::int64_t> rotation;
    std::optional<double> straighten; ///< degrees
    std::optional<CropRect> crop;
    std::optional<double> highlights;
    std::optional<double> shadows;
    std::optional<std::vector<RedEyeSpot>> redEyes;
    std::optional<std::vector<BrushLayer>> brushes;
    std::optional<bool> flipHorizontal;
    std::optional<bool> flipVertical;
    std::optional<double> recovery;
    std::optional<double> blackPoint;
    std::optional<double> brightness;
    std::optional<double> midContrast;
    std::optional<double> definition;
    std::optional<Vignette> vignette;
    std::optional<Vignette> devignette;
    std::optional<ToneCurves> curves;
    std::optional<std::vector<ToneCurves>> moreCurves; ///< curve sets beside `curves`
    std::optional<ToneCurves> apertureMatch; ///< a curve set of its own
    std::optional<bool> rawOrientation;
    std::optional<Levels> levels;
    std::optional<std::vector<ColorBand>> colorBands;
    std::optional<BWMix> bwMix;
    std::optional<Monochrome> monochrome;
    std::optional<double> sepia;
    std::optional<double> polarize;
    std::optional<double> intensifyContrast;
    std::optional<NoiseReduction> noiseReduction;
    std::optional<double> edgeSharpen;
    std::optional<ChromaticAberration> chromaticAberration;
    std::optional<std::vector<std::string>> disabledBricks; ///< AdjustmentBrick names; off, but values kept
    std::optional<std::vector<std::string>> addedBricks; ///< AdjustmentBrick names; added to the panel
};
KORVO_RECORD(PhotoEdits, exposure, contrast, saturation, vibrance, temperature, tint, sharpness, retouches,
    rotation, straighten, crop, highlights, shadows, redEyes, brushes, flipHorizontal, flipVertical, recovery,
    blackPoint, brightness, midContrast, definition, vignette, devignette, curves, moreCurves, apertureMatch,
    rawOrientation, levels, colorBands, bwMix, monochrome, sepia, polarize, intensifyContrast, noiseReduction,
    edgeSharpen, chromaticAberration, disabledBricks, addedBricks)

/// One dab or stroke segment of a local layer's mask.
struct BrushStroke {
    double x = 0;
    double y = 0;
    double radius = 0;
    double softness = 0;
    std::optional<bool> erase; ///< else paint
    std::optional<double> strength; ///< full when not set
    std::optional<bool> detectEdges;
};
KORVO_RECORD(BrushStroke, x, y, radius, softness, erase, strength, detectEdges)

/// A local adjustment: a painted mask and the edits applied through it. A new layer has an id of its own.
struct BrushLayer {
    Uuid id = Uuid::random();
    std::optional<std::string> name; ///< the user's label
    std::optional<std::string> brick; ///< the AdjustmentBrick whose controls it carries, if made from one
    std::optional<std::string> quickBrush; ///< the QuickBrush it was made as, if any
    std::optional<bool> inverted; ///< applies outside the mask
    std::vector<BrushStroke> strokes; ///< in the order of painting
    std::optional<std::string> maskPath;
    PhotoEdits edits;
};
KORVO_RECORD(BrushLayer, id, name, brick, quickBrush, inverted, strokes, maskPath, edits)

/// Whether nothing at all is set. A field set to its neutral value is an edit: the user touched it.
bool isIdentity(const PhotoEdits& edits);

} // namespace korvo
