#include "base/Json.h"
#include "edits/AdjustmentBrick.h"
#include "edits/AdjustmentPreset.h"

#include <cmath>
#include <gtest/gtest.h>

namespace korvo {

namespace {

constexpr std::string_view identity
    = R"({"exposure":0,"contrast":1,"saturation":1,"vibrance":0,"temperature":0,"tint":0,"sharpness":0})";

const std::string levelsChannel
    = R"({"blackSrc":0,"blackDst":0,"shadowSrc":0.25,"shadowDst":0.25,"midSrc":0.5,)"
      R"("midDst":0.6,"highlightSrc":0.75,"highlightDst":0.8,"whiteSrc":1,"whiteDst":1})";
const std::string curves = R"({"rgb":[{"x":0,"y":0.1},{"x":1,"y":1}],"red":[],"green":[{"x":0.5,"y":0.5}],)"
                           R"("blue":[],"gamma":1.8})";
const std::string layer
    = R"({"id":"F47AC10B-58CC-4372-A567-0E02B2C3D479","name":"Sky","brick":"levels","quickBrush":"burn",)"
      R"("inverted":true,"strokes":[{"x":0.1,"y":0.2,"radius":0.05,"softness":0.5,"erase":true,"strength":0.7,)"
      R"("detectEdges":false}],"maskPath":"masks/1.png","edits":)";

/// Every key there is, in the order of writing.
const std::string everything
    = R"({"exposure":-0.5,"contrast":1.1,"saturation":0.9,"vibrance":0.2,"temperature":120,"tint":-4,"sharpness":0.3,)"
      R"("retouches":[{"x":0.1,"y":0.2,"radius":0.01,"dx":0.05,"dy":-0.05,"softness":0.5,"opacity":0.9,"clone":true,)"
      R"("trail":[{"x":0.1,"y":0.2}],"fill":false,"variant":3,"maskPath":"masks/2.png",)"
      R"("maskBox":{"x":0,"y":0.25,"w":0.5,"h":0.75}}],"rotation":90,"straighten":-1.25,)"
      R"("crop":{"x":0.1,"y":0.1,"w":0.8,"h":0.7},"highlights":0.4,"shadows":-0.2,)"
      R"("redEyes":[{"x":0.3,"y":0.4,"radius":0.02}],"brushes":[)"
    + layer + std::string(identity)
    + R"(}],"flipHorizontal":true,"flipVertical":false,"recovery":0.1,"blackPoint":0.05,"brightness":0.15,)"
      R"("midContrast":0.25,"definition":0.35,"vignette":{"intensity":0.5,"radius":0.6},)"
      R"("devignette":{"intensity":0.7,"radius":0.8},"curves":)"
    + curves + R"(,"moreCurves":[)" + curves + R"(],"apertureMatch":)" + curves
    + R"(,"rawOrientation":true,"levels":{"rgb":)" + levelsChannel + R"(,"red":)" + levelsChannel
    + R"(,"green":)" + levelsChannel + R"(,"blue":)" + levelsChannel
    + R"(,"luminance":true},"colorBands":[{"hueBase":0.1,"hueShift":0.2,"saturation":0.3,"luminance":0.4,)"
      R"("spread":0.5}],"bwMix":{"red":0.3,"green":0.6,"blue":0.1},)"
      R"("monochrome":{"red":0.9,"green":0.8,"blue":0.7,"intensity":0.6},"sepia":0.5,"polarize":0.4,)"
      R"("intensifyContrast":0.3,"noiseReduction":{"radius":2,"edgeDetail":0.1},"edgeSharpen":0.2,)"
      R"("chromaticAberration":{"redCyan":0.01,"blueYellow":-0.02},"disabledBricks":["sepia","no brick"],)"
      R"("addedBricks":["polarize"]})";

PhotoEdits nested(int layers)
{
    PhotoEdits edits;
    for (int i = 0; i < layers; ++i) {
        BrushLayer outer;
        outer.edits = edits;
        edits.brushes = std::vector{outer};
    }
    return edits;
}

template <typename Change>
PhotoEdits with(Change change)
{
    PhotoEdits edits;
    change(edits);
    return edits;
}

} // namespace

TEST(PhotoEdits, everyFieldIsWrittenInOrderAndReadBack)
{
    EXPECT_EQ(toJson(fromJson<PhotoEdits>(everything)), everything);
}

TEST(PhotoEdits, onlyRequiredFieldsAreWrittenWhenNothingIsSet)
{
    EXPECT_EQ(toJson(PhotoEdits()), identity);
    EXPECT_EQ(fromJson<PhotoEdits>(identity), PhotoEdits());
    EXPECT_EQ(toJson(RetouchSpot()), R"({"x":0,"y":0,"radius":0,"dx":0,"dy":0})");
    EXPECT_EQ(toJson(ToneCurves()), R"({"rgb":[],"red":[],"green":[],"blue":[]})");
    EXPECT_EQ(toJson(Levels()), R"({"rgb":)" + toJson(LevelsChannel()) + "}");
    EXPECT_EQ(toJson(BrushStroke()), R"({"x":0,"y":0,"radius":0,"softness":0})");
    BrushLayer layer;
    EXPECT_EQ(toJson(layer),
        R"({"id":")" + layer.id.text() + R"(","strokes":[],"edits":)" + std::string(identity) + "}");
    AdjustmentPreset preset;
    EXPECT_EQ(toJson(preset),
        R"({"id":")" + preset.id.text() + R"(","name":"","edits":)" + std::string(identity) + "}");
}

TEST(PhotoEdits, anythingSetIsNotTheIdentity)
{
    EXPECT_TRUE(isIdentity(PhotoEdits()));
    EXPECT_TRUE(isIdentity(fromJson<PhotoEdits>(
        R"({"sharpness":-0,"tint":0.0,"temperature":0e0,"vibrance":0,"saturation":1,"contrast":1,"exposure":0,)"
        R"("highlights":null,"fromTomorrow":{"a":[1]}})")));
    EXPECT_FALSE(isIdentity(with([](auto& edits) { edits.highlights = 0; })));
    EXPECT_FALSE(isIdentity(with([](auto& edits) { edits.brushes.emplace(); })));
    EXPECT_FALSE(isIdentity(with([](auto& edits) { edits.contrast = std::nextafter(1, 2); })));
    EXPECT_FALSE(isIdentity(with([](auto& edits) { edits.addedBricks.emplace(); })));
}

TEST(PhotoEdits, aFaultAnywhereFailsTheWhole)
{
    const auto changed = [](std::string_view from, std::string_view to) {
        auto text = everything;
        const auto at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return text.replace(at, from.size(), to);
    };
    for (const auto& [from, to] : {
             std::pair{R"("exposure":-0.5,)", R"()"}, // required, left out
             {R"("exposure":-0.5)", R"("exposure":null)"},
             {R"("exposure":-0.5)", R"("exposure":"-0.5")"},
             {R"("rotation":90)", R"("rotation":90.5)"},
             {R"("crop":{"x":0.1,)", R"("crop":{)"},
             {R"("flipVertical":false)", R"("flipVertical":0)"},
             {R"("disabledBricks":["sepia",)", R"("disabledBricks":[null,)"},
             {R"("redEyes":[{)", R"("redEyes":[[],{)"},
             {R"("id":"F47AC10B)", R"("id":"F47AC10)"},
             {R"("sharpness":0})", R"("shrpness":0})"}, // in the layer's edits
             {R"("addedBricks":["polarize"]})", R"("addedBricks":["polarize"])"},
         })
        EXPECT_THROW(fromJson<PhotoEdits>(changed(from, to)), JsonError) << to;
    EXPECT_THROW(fromJson<PhotoEdits>(""), JsonError);
    EXPECT_EQ(fromJson<PhotoEdits>(changed(R"("crop":{)", R"("crop":null,"Crop":{)")).crop, std::nullopt);
}

TEST(PhotoEdits, nestsAsDeepAsCanBeReadAgain)
{
    const auto deepest = nested(21); // three layers of JSON each, and the outermost
    EXPECT_EQ(fromJson<PhotoEdits>(toJson(deepest)), deepest);
    EXPECT_THROW(toJson(nested(22)), JsonError);
}

TEST(BrushLayer, newOnesHaveAnIdOfTheirOwnAndKeepIt)
{
    EXPECT_NE(BrushLayer(), BrushLayer());
    const auto text = R"({"id":"f47ac10b-58cc-4372-a567-0e02b2c3d479","strokes":[],"edits":)"
        + std::string(identity) + "}";
    EXPECT_EQ(fromJson<BrushLayer>(text), fromJson<BrushLayer>(text));
    EXPECT_EQ(fromJson<BrushLayer>(text).id.text(), "F47AC10B-58CC-4372-A567-0E02B2C3D479");
}

TEST(AdjustmentBrick, titlesStandInTheOrderOfThePanel)
{
    std::string titles;
    for (const auto& [brick, name] : casesOf<AdjustmentBrick>)
        (titles += title(brick)) += ", ";
    EXPECT_EQ(titles,
        "Chromatic Aberration, Devignette, Noise Reduction, White Balance, Exposure, Enhance, "
        "Highlights & Shadows, Levels, Color, Black & White, Color Monochrome, Sepia Tone, "
        "Sharpen, Edge Sharpen, Vignette, Curves, Polarize, Intensify Contrast, ");
}

} // namespace korvo
