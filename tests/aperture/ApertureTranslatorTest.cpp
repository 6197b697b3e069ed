#include "base/Json.h"
#include "tests/aperture/TranslationCase.h"
#include "tests/support/PlistWriter.h"

#include <gtest/gtest.h>
#include <limits>

namespace korvo {

namespace {

using Value = PlistDraft;
using Step = TranslationStep;

const std::string identityLevels
    = R"({"blackSrc":0,"blackDst":0,"shadowSrc":0.25,"shadowDst":0.25,"midSrc":0.5,)"
      R"("midDst":0.5,"highlightSrc":0.75,"highlightDst":0.75,"whiteSrc":1,"whiteDst":1})";

const std::vector<TranslationCase> toneCases{
    {{{"RKRawDecodeOperation", R"({"inputMethodVersion":"8"})"}}, "{}"},
    {{{"RKExposureOperation", R"({"inputEV":1.5,"inputRecoveryEV":2.0,"inputBias":80,"inputBrightness":2})"},
         {"RKExposureOperation", R"({"inputEV":-0.25,"inputRecoveryEV":-1,"inputBias":0.5})"}},
        R"({"exposure":1.25,"recovery":1.5,"blackPoint":50,"brightness":1})"},
    {{{"RKExposureOperation", R"({"inputRecoveryEV":0,"inputBias":0.5,"inputBrightness":-0.5})"}},
        R"({"brightness":-0.5})"},
    {{{"RKEnhanceOperation", R"({"inputContrast":0.25,"inputSaturation":2,"inputVibrancy":0.5})"},
         {"RKEnhanceOperation", R"({"inputContrast":0.5,"inputVibrancy":0.25,"inputDefinition":3})"}},
        R"({"contrast":1.875,"saturation":2,"vibrance":0.75,"definition":1})"},
    {{{"RKShadowHighlightOperation",
          R"({"inputShadowAmount":30,"inputHighlightAmount":-50,"inputMidtoneContrast":250})"},
         {"RKShadowHighlightOperation", R"({"inputShadowAmount":80,"inputHighlightAmount":25})"}},
        R"({"highlights":-0.25,"shadows":1,"midContrast":1})"},
    {{{"RKShadowHighlightOperation", R"({"inputShadowAmount":0.4,"inputHighlightAmount":50})"},
         {"RKShadowHighlightOperation", R"({"inputHighlightAmount":-50})"}},
        "{}"},
};

const std::vector<TranslationCase> whiteBalanceCases{
    {{{"RKWhiteBalanceOperation", R"({"inputTemperature":6000,"inputTint":-5,"inputEV":2,"inputBias":3})"}},
        R"({"temperature":40,"tint":-15})"},
    {{{"RKWhiteBalanceOperation", R"({"inputTemperature":6500,"inputTint":200})"}},
        R"({"temperature":52,"tint":100})", "approximated RKWhiteBalanceOperation 1\n", {}},
    {{{"RKWhiteBalanceOperation", R"({"inputTemperature":9000})"}}, R"({"temperature":100})",
        "approximated RKWhiteBalanceOperation 1\n", {{std::numeric_limits<double>::quiet_NaN(), {}}}},
    {{{"RKWhiteBalanceOperation", R"({"inputTemperature":6500,"inputIsDefaults":true})"}}, "{}", "", {}},
};

const std::vector<TranslationCase> colorCases{
    {{{"RKLevelsOperation", R"({"inputMode":2,"inputWhiteSrcRGB":0.5,"inputHilightDstBlue":0.125})"}},
        R"({"levels":{"rgb":{"blackSrc":0,"blackDst":0,"shadowSrc":0.25,"shadowDst":0.25,"midSrc":0.5,)"
        R"("midDst":0.5,"highlightSrc":0.75,"highlightDst":0.75,"whiteSrc":0.5,"whiteDst":1},"red":)"
            + identityLevels + R"(,"green":)" + identityLevels
            + R"(,"blue":{"blackSrc":0,"blackDst":0,"shadowSrc":0.25,"shadowDst":0.25,"midSrc":0.5,)"
              R"("midDst":0.5,"highlightSrc":0.75,"highlightDst":0.125,"whiteSrc":1,"whiteDst":1}}})"},
    {{{"RKLevelsOperation"}, {"RKLevelsOperation", R"({"inputMode":1})"}},
        R"({"levels":{"rgb":)" + identityLevels + R"(,"red":)" + identityLevels + R"(,"green":)"
            + identityLevels + R"(,"blue":)" + identityLevels + R"(,"luminance":true}})",
        "approximated RKLevelsOperation 1\n"}, // the first one is lost
    {{{"RKColorOperation",
         R"({"inputRedsHueShift":0.005,"inputBluesSaturation":-0.5,"inputCyansSpread":2})"}},
        R"({"colorBands":[{"hueBase":0,"hueShift":0.005,"saturation":0,"luminance":0,"spread":1},)"
        R"({"hueBase":60,"hueShift":0,"saturation":0,"luminance":0,"spread":1},)"
        R"({"hueBase":120,"hueShift":0,"saturation":0,"luminance":0,"spread":1},)"
        R"({"hueBase":180,"hueShift":0,"saturation":0,"luminance":0,"spread":2},)"
        R"({"hueBase":240,"hueShift":0,"saturation":-0.5,"luminance":0,"spread":1},)"
        R"({"hueBase":300,"hueShift":0,"saturation":0,"luminance":0,"spread":1}]})"},
    {{{"RKColorOperation",
         R"({"inputYellowsHueBase":50,"inputRedsHueShift":0.009,"inputMagentasLuminance":-0.009})"}},
        "{}"},
    {{{"RKChannelMixerOperation", R"({"inputRValue":50})"}},
        R"({"bwMix":{"red":0.5,"green":0.59,"blue":0.11}})"},
    {{{"CIColorMonochrome"}}, R"({"monochrome":{"red":0.6,"green":0.45,"blue":0.3,"intensity":1}})"},
    {{{"CISepiaTone"}, {"DGGNGMultiplyOperation"},
         {"DGGNGOverlayBlendOperation", R"({"inputIntensity":0.75})"}},
        R"({"sepia":1,"polarize":0.5,"intensifyContrast":0.75})"},
};

const std::vector<TranslationCase> detailCases{
    {{{"RKVignetteOperation", R"({"inputIntensity":0.5})"},
         {"RKDevignetteOperation", R"({"inputRadius":2})"}},
        R"({"vignette":{"intensity":0.5,"radius":1},"devignette":{"intensity":0,"radius":2}})"},
    {{{"RKSharpenOperation", R"({"inputIntensity":0.5})"},
         {"DGGNGSharpenOperation", R"({"inputSharpness":0.25,"inputIntensity":9})", "gone"}},
        R"({"sharpness":0.75})"},
    {{{"RKSharpenOperation", R"({"inputIntensity":0.5})"},
         {"DGGNGSharpenOperation", R"({"inputSharpness":3})"}},
        R"({"sharpness":1})"},
    {{{"RKProSharpenOperation", R"({"inputSharpness":0.75})"},
         {"RKProSharpenOperation", R"({"inputSharpness":0.5})"}},
        R"({"edgeSharpen":0.75})"},
    {{{"RKEnhanceOperation", R"({"inputDefinition":0.5})"},
         {"DGGNGDefinitionOperation", R"({"inputIntensity":0.25})"}},
        R"({"definition":0.75})"},
    {{{"RKNoiseReductionOperation", R"({"inputRadius":2,"inputEdgeDetail":0.5})"},
         {"DGChromaticAberrationOperation", R"({"inputRedCyan":-2,"inputBlueYellow":3})"}},
        R"({"noiseReduction":{"radius":2,"edgeDetail":0.5},"chromaticAberration":{"redCyan":-2,"blueYellow":3}})"},
};

const std::string crop = R"({"inputXOrigin":1000,"inputYOrigin":0,"inputWidth":2000,"inputHeight":750})";

const std::vector<TranslationCase> geometryCases{
    {{{"RKStraightenCropOperation", R"({"inputRotation":3})"}}, R"({"straighten":-3})"},
    {{{"RKStraightenCropOperation", R"({"inputRotation":0})"}}, "{}"},
    {{{"RKCropOperation", crop}}, R"({"crop":{"x":0.25,"y":0.75,"w":0.5,"h":0.25}})"},
    {{{"RKCropOperation", crop}}, R"({"crop":{"x":0,"y":0.25,"w":0.25,"h":0.5}})", "", {{}, 4000, 3000, 90}},
    {{{"RKCropOperation", crop}}, R"({"crop":{"x":0.25,"y":0,"w":0.5,"h":0.25}})", "", {{}, 4000, 3000, 180}},
    {{{"RKCropOperation", crop}}, R"({"crop":{"x":0.75,"y":0.25,"w":0.25,"h":0.5}})", "",
        {{}, 4000, 3000, -90}},
    {{{"RKCropOperation",
         R"({"inputXOrigin":-1000,"inputYOrigin":1500,"inputWidth":2000,"inputHeight":3000})"}},
        R"({"crop":{"x":0,"y":0,"w":0.25,"h":0.5}})"},
    {{{"RKCropOperation", R"({"inputXOrigin":5,"inputWidth":0,"inputHeight":10})"}}, "{}"},
    {{{"RKCropOperation", R"({"inputXOrigin":4000,"inputWidth":10,"inputHeight":10})"}}, "{}",
        "unsupported RKCropOperation 1\n"},
    {{{"RKCropOperation", crop}, {"RKRetouchOperation", R"({"inputStrokes":[]})"}}, "{}",
        "unsupported RKCropOperation 1\nunsupported RKRetouchOperation 1\n", {}},
    {{{"RKRetouchOperation",
          R"({"inputStrokes":[{"brushStroke":{"radius":40,"sourceOffset":"{400, -300}"},)"
          R"("xLocation":1000,"yLocation":750}]})"},
         {"RKRetouchOperation",
             R"({"inputStrokes":[{"radius":20,"xLocation":0,"yLocation":0},{"radius":20}]})"}},
        R"({"retouches":[{"x":0.25,"y":0.75,"radius":0.01,"dx":0.1,"dy":0.1},)"
        R"({"x":0,"y":1,"radius":0.005,"dx":0,"dy":0}]})",
        "approximated RKRetouchOperation 1\n"},
    {{{"RKRetouchOperation", R"({"inputStrokes":[{"xLocation":"5","yLocation":5,"radius":5},7]})"}}, "{}",
        "unsupported RKRetouchOperation 1\n"},
};

const std::vector<TranslationCase> brushCases{
    {{{"DGGNGDodgeOperation", R"({"inputIntensity":0.5,"inputRadius":9})", "a"},
         {"DGGNGBurnOperation", R"({"inputIntensity":true,"inputAmount":0.5})", "b"}},
        R"({} + dodge in a.tiff {"exposure":0.5} + burn in b.tiff {"exposure":-0.5})"},
    {{{"DGGNGSaturateOperation", R"({"inputAmount":1.5})", "a"},
         {"DGGNGSaturateOperation", R"({"inputAmount":0.25})", "b"},
         {"DGGNGDesaturateOperation", R"({"inputAmount":0.25})", "c"}},
        R"({} + saturate in a.tiff {"saturation":1.5} + saturate in b.tiff {"saturation":1.25})"
        R"( + desaturate in c.tiff {"saturation":0.75})"},
    {{{"DGGNGContrastOperation", R"({"inputIntensity":0.5})", "a"},
         {"DGGNGVibrancyOperation", R"({"inputIntensity":9})", "a"},
         {"DGGNGSharpenOperation", R"({"inputSharpness":0.5,"inputIntensity":1})", "a"},
         {"DGGNGDefinitionOperation", R"({"inputIntensity":0.5})", "a"},
         {"DGGNGMultiplyOperation", "{}", "a"},
         {"DGGNGOverlayBlendOperation", R"({"inputIntensity":1})", "a"}},
        R"({} + contrast in a.tiff {"contrast":1.5} + vibrancy in a.tiff {"vibrance":1})"
        R"( + sharpen in a.tiff {"sharpness":0.5} + definition in a.tiff {"definition":0.5})"
        R"( + polarize in a.tiff {"polarize":0.5} + intensifyContrast in a.tiff {"intensifyContrast":1})"},
    {{{"DGGNGBlurOperation", R"({"inputRadius":5})", "a"},
         {"DGGNGBrushedBlurOperation", R"({"inputRadius":50})", "a"},
         {"DGGNGSkinSmoothingOperation", R"({"inputRadius":5})", "a"},
         {"DGGNGNoiseReductionOperation", R"({"inputRadius":3})", "a"},
         {"DGGNGHaloReductionOperation", R"({"inputIntensity":2})", "a"}},
        R"({} + blur in a.tiff {"noiseReduction":{"radius":5,"edgeDetail":0}})"
        R"( + blur in a.tiff {"noiseReduction":{"radius":10,"edgeDetail":0}})"
        R"( + skinSmoothing in a.tiff {"noiseReduction":{"radius":5,"edgeDetail":0}})"
        R"( + noiseReduction in a.tiff {"noiseReduction":{"radius":3,"edgeDetail":0}})"
        R"( + chromaticAberration in a.tiff {"chromaticAberration":{"redCyan":2,"blueYellow":2}})"},
    // Operations of the whole photo, brushed: each layer starts from nothing.
    {{{"RKExposureOperation", R"({"inputEV":1})"}, {"RKExposureOperation", R"({"inputEV":0.5})", "a"},
         {"CISepiaTone", "{}", "b"}, {"RKColorOperation", "{}", "a"}, {"DGGNGDodgeOperation", "{}", "a"}},
        R"({"exposure":1} + exposure in a.tiff {"exposure":0.5} + sepia in b.tiff {"sepia":1})"},
    {{{"RKCropOperation", crop, "a"}, {"RKStraightenCropOperation", R"({"inputRotation":3})", "a"},
         {"RKUnheardOf", "{}", "a"}},
        "{}",
        "unsupported RKCropOperation 1\nunsupported RKStraightenCropOperation 1\nunsupported RKUnheardOf "
        "1\n"},
    // Without a mask they are merged into the whole photo's.
    {{{"RKExposureOperation", R"({"inputEV":1})"}, {"DGGNGDodgeOperation", R"({"inputIntensity":0.5})"},
         {"DGGNGBurnOperation", R"({"inputIntensity":0.25})", "gone"},
         {"DGGNGContrastOperation", R"({"inputAmount":0.5})"},
         {"DGGNGSaturateOperation", R"({"inputAmount":2})"},
         {"DGGNGDesaturateOperation", R"({"inputAmount":0.25})"},
         {"DGGNGVibrancyOperation", R"({"inputAmount":1})"}},
        R"({"exposure":1.25,"contrast":1.5,"saturation":1.5,"vibrance":1})",
        "approximated DGGNGBurnOperation 1\napproximated DGGNGContrastOperation 1\n"
        "approximated DGGNGDesaturateOperation 1\napproximated DGGNGDodgeOperation 1\n"
        "approximated DGGNGSaturateOperation 1\napproximated DGGNGVibrancyOperation 1\n"},
    {{{"RKNoiseReductionOperation", R"({"inputRadius":4,"inputEdgeDetail":0.5})"},
         {"DGGNGNoiseReductionOperation", R"({"inputRadius":3})"},
         {"DGGNGHaloReductionOperation", R"({"inputAmount":2})"},
         {"DGGNGHaloReductionOperation", R"({"inputAmount":1})"}},
        R"({"noiseReduction":{"radius":4,"edgeDetail":0.5},"chromaticAberration":{"redCyan":3,"blueYellow":3}})",
        "approximated DGGNGHaloReductionOperation 2\napproximated DGGNGNoiseReductionOperation 1\n"},
};

std::string colorOf(const std::string& color)
{
    const Step step{"CIColorMonochrome", R"({"inputColor":)" + color + "}"};
    const auto tint = translated({step.adjustment()}).edits.monochrome.value();
    return toJson(std::vector{tint.red, tint.green, tint.blue});
}

} // namespace

TEST(ApertureTranslator, translatesEachOperation)
{
    expect(toneCases);
    expect(whiteBalanceCases);
    expect(colorCases);
    expect(detailCases);
    expect(geometryCases);
}

TEST(ApertureTranslator, makesLayersOfBrushedAdjustmentsAndMergesThoseWithoutAMask)
{
    expect(brushCases);
}

TEST(ApertureTranslator, readsCurvePointsInEachForm)
{
    const auto list = R"({"RGBCurvePoints":[{"x":0,"y":0.5},"{0.25, 0.5}",{"NS.pointval":"{1, 1}"}],)"
                      R"("blueCurvePoints":[[0,1],[1,0]],"gamma":)";
    const auto read = R"({"curves":{"rgb":[{"x":0,"y":0.5},{"x":0.25,"y":0.5},{"x":1,"y":1}],"red":[],)"
                      R"("green":[],"blue":[{"x":0,"y":1},{"x":1,"y":0}])";
    const auto faulty = R"({"greenCurvePoints":[[0,0.5],[1],["1",1],[1,2,3],"{1, nan}","1 1 x",{"x":1},7]})";
    const auto green = R"({"rgb":[],"red":[],"green":[{"x":0,"y":0.5}],"blue":[],"gamma":0.4545})";
    expect({
        {{{"RKCurvesOperation", std::string(list) + "1.009}"}}, std::string(read) + "}}"},
        {{{"RKCurvesOperation", std::string(list) + "0.985}"}}, std::string(read) + R"(,"gamma":0.985}})"},
        {{{"RKCurvesOperation", faulty}, {"RKCurvesOperation", faulty}},
            std::string(R"({"curves":)") + green + R"(,"moreCurves":[)" + green + "]}",
            "approximated RKCurvesOperation 2\n"},
        {{{"RKCurvesOperation", R"({"RGBCurvePoints":["x"],"gamma":2})"}}, "{}",
            "unsupported RKCurvesOperation 1\n"},
    });
}

TEST(ApertureTranslator, readsColorsInEachForm)
{
    for (const auto* const color :
        {R"({"NSColorSpace":1,"NSRGB":"data:0.25 0.5 1\u0000"})", R"("0.25 0.5 1")", R"("0.25 0.5 1 0.5")",
            "[0.25,0.5,1]", R"({"red":0.25,"green":0.5,"blue":1})"})
        EXPECT_EQ(colorOf(color), "[0.25,0.5,1]") << color;
    EXPECT_EQ(colorOf('"' + std::string(300, ' ') + R"(0.25 0.5 1")"), "[0.6,0.45,0.3]");
    for (const auto* const color : {R"({"NSRGB":"data:red"})", R"("0.25 0.5")", "[0.25,0.5,true]", "0.25",
             R"({"red":0.25,"green":0.5})", "[1,1,1,1,1]"})
        EXPECT_EQ(colorOf(color), "[0.6,0.45,0.3]") << color;
}

TEST(ApertureTranslator, passesOverWhatIsDisabledAndCountsTheUnknown)
{
    expect({{{{"RKSomething"}, {"RKExposureOperation", R"({"inputEV":1})", {}, false},
                 {"RKSomething", "{}", "gone"}, {"RKOther", "{}", {}, false}},
        "{}", "unsupported RKSomething 2\n"}});
    ApertureTranslator::Report sum, more;
    sum.unsupported["a"] = more.unsupported["a"] = more.approximated["b"] = 2;
    sum.add(more);
    EXPECT_EQ(sum.unsupported.at("a"), 4);
    EXPECT_EQ(sum.approximated.at("b"), 2);
}

TEST(ApertureTranslator, readsParametersBesideOrInsideInputKeys)
{
    const auto exposure = [](const char* root) {
        const auto parameters = BinaryPlist::parse(Bytes(plistBytes(plistOf(root))));
        return translated({{"RKExposureOperation", true, std::nullopt, parameters}}).edits.exposure;
    };
    EXPECT_EQ(exposure(R"({"inputEV":1.5})"), 1.5);
    EXPECT_EQ(exposure(R"({"inputKeys":7,"inputEV":1.5})"), 1.5);
    EXPECT_EQ(exposure(R"({"inputKeys":{},"inputEV":1.5})"), 0);
    EXPECT_EQ(exposure("[1]"), 0);
    EXPECT_EQ(translated({{"RKExposureOperation", true, std::nullopt, {}}}).edits, PhotoEdits());
}

TEST(ApertureTranslator, findsTheCamerasWhiteBalance)
{
    const Step changed{"RKWhiteBalanceOperation", R"({"inputTemperature":9000})"};
    const Step other{"RKExposureOperation", R"({"inputIsDefaults":true,"inputTemperature":9000})"};
    const Step own{"RKWhiteBalanceOperation",
        R"({"inputIsDefaults":true,"inputTemperature":4800,"inputTint":3})", {}, false};
    const auto found
        = ApertureTranslator::asShot(std::vector{changed.adjustment(), other.adjustment(), own.adjustment()});
    EXPECT_EQ(found.temperature, 4800);
    EXPECT_EQ(found.tint, 3);
    EXPECT_FALSE(ApertureTranslator::asShot(std::vector{changed.adjustment()}).temperature);
}

TEST(ApertureTranslator, valuesOfTheWrongKindAreAsGoodAsNone)
{
    const Value wrong[]{Value("wrong"), Value(Value::Date{1}),
        Value(std::numeric_limits<double>::quiet_NaN()), Value(-std::numeric_limits<double>::infinity()),
        Value(Value::Array{Value("1"), Value()}), plistDict({{"x", Value("1")}}), Value(Value::Data{1, 2, 3}),
        Value(false)};
    for (const auto* const cases : {&toneCases, &whiteBalanceCases, &colorCases, &detailCases, &brushCases})
        for (const auto& test : *cases)
            for (const auto& step : test.steps)
                for (const auto& value : wrong) {
                    SCOPED_TRACE(step.name + std::to_string(static_cast<int>(value.value.index())));
                    const auto result = translated({step.filledWith(value)}, test.photo);
                    const auto without = translated({step.with(plistDict({}))}, test.photo);
                    EXPECT_EQ(changes(result.edits), changes(without.edits));
                    EXPECT_EQ(result.report, without.report);
                }
}

TEST(ApertureTranslator, sumsAndProductsOfHugeNumbersStayFinite)
{
    for (const auto* const cases :
        {&toneCases, &whiteBalanceCases, &colorCases, &detailCases, &geometryCases, &brushCases})
        for (const auto& test : *cases) {
            std::vector<ApertureAdjustment> adjustments;
            for (const double huge : {1.7e308, -1.7e308, 1.7e308, 1.7e308, -1.7e308, -1.7e308, -1.7e308})
                for (auto step : test.steps) {
                    adjustments.push_back(step.filledWith(Value(huge)));
                    step.mask = step.mask ? std::nullopt : std::optional<std::string>("a");
                    adjustments.push_back(step.filledWith(Value(huge)));
                }
            SCOPED_TRACE(test.steps[0].name);
            const auto edits = translated(adjustments, test.photo).edits;
            EXPECT_NO_THROW(toJson(edits)); // throws for what is not finite
        }
}

TEST(ApertureTranslator, takesOnlySoManyPointsAndSpots)
{
    const auto point = plistDict({{"x", Value(0.5)}, {"y", Value(0.5)}});
    const auto stroke
        = plistDict({{"radius", Value(1.0)}, {"xLocation", Value(1.0)}, {"yLocation", Value(1.0)}});
    const auto step = [](const char* name, const char* key, Value::Array list) {
        return Step{name}.with(plistDict({{key, Value(std::move(list))}}));
    };
    const auto strokes = step("RKRetouchOperation", "inputStrokes", Value::Array(9'999, stroke));
    const auto result = translated({step("RKCurvesOperation", "RGBCurvePoints", Value::Array(20'000, point)),
        strokes, strokes, strokes});
    EXPECT_EQ(result.edits.curves->rgb.size(), 1'000);
    EXPECT_EQ(result.edits.retouches->size(), 10'000);
    EXPECT_EQ(result.report,
        "unsupported RKRetouchOperation 1\napproximated RKCurvesOperation 1\napproximated RKRetouchOperation "
        "1\n");
}

TEST(ApertureTranslator, masksThatNoEditCanNameAreUnsupported)
{
    const Step dodge{"DGGNGDodgeOperation", R"({"inputIntensity":1})", "\xff"};
    const auto result = translated({dodge.adjustment()});
    EXPECT_EQ(result.edits, PhotoEdits());
    EXPECT_EQ(result.report, "unsupported DGGNGDodgeOperation 1\n");
}

} // namespace korvo
