#include "tests/aperture/TranslationCase.h"

#include "base/Json.h"
#include "tests/support/PlistWriter.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

using Value = PlistDraft;

Value plist(const JsonValue& json)
{
    switch (json.kind()) {
    case JsonValue::Kind::boolean:
        return Value(json.boolean());
    case JsonValue::Kind::integer:
        return Value(json.integer());
    case JsonValue::Kind::number:
        return Value(json.number());
    case JsonValue::Kind::text: {
        const auto text = json.text();
        return text.starts_with("data:") ? Value(Value::Data(text.begin() + 5, text.end()))
                                         : Value(std::string(text));
    }
    case JsonValue::Kind::array: {
        Value::Array elements;
        for (const JsonValue element : json.elements())
            elements.push_back(plist(element));
        return Value(std::move(elements));
    }
    default: {
        Value::Dict members;
        for (const auto [key, value] : json.members())
            members.push_back({Value(std::string(key)), plist(value)});
        return Value(std::move(members));
    }
    }
}

std::string counts(const std::map<std::string, std::int64_t>& report, const std::string& what)
{
    std::string text;
    for (const auto& [name, count] : report)
        text += what + " " + name + " " + std::to_string(count) + "\n";
    return text;
}

} // namespace

Value plistOf(const std::string& json)
{
    return plist(JsonDocument(json).root());
}

ApertureAdjustment TranslationStep::with(const Value& values) const
{
    const auto bytes = archiveBytes(plistDict({{"inputKeys", values}, {"DGOperationIdentifier", Value(name)},
        {"DGOperationVersionNumber", Value(std::int64_t(0))}, {"enabled", Value(true)}}));
    return {name, isEnabled, mask, BinaryPlist::unarchive(Bytes(bytes)).value()};
}

ApertureAdjustment TranslationStep::filledWith(const Value& value) const
{
    auto filled = std::get<Value::Dict>(plistOf(parameters).value);
    for (auto& member : filled)
        member.value = value;
    return with(Value(std::move(filled)));
}

TranslationResult translated(
    const std::vector<ApertureAdjustment>& adjustments, const ApertureTranslator::Photo& photo)
{
    ApertureTranslator::Report report;
    const auto mask = [](const std::string& uuid) {
        return uuid == "gone" ? std::nullopt : std::optional<std::filesystem::path>(uuid + ".tiff");
    };
    auto edits = ApertureTranslator::translate(adjustments, photo, mask, report);
    return {std::move(edits),
        counts(report.unsupported, "unsupported") + counts(report.approximated, "approximated")};
}

std::string changes(PhotoEdits edits)
{
    std::string layers;
    for (const auto& layer : std::exchange(edits.brushes, {}).value_or(std::vector<BrushLayer>()))
        layers += " + " + layer.quickBrush.value_or("") + layer.brick.value_or("") + " in "
            + layer.maskPath.value_or("") + " " + changes(layer.edits);
    JsonWriter writer(64);
    writer.beginObject();
    forEachField<PhotoEdits>([&, neutral = PhotoEdits()](const auto& field) {
        if (!(edits.*field.member == neutral.*field.member))
            writer.member(field.name, edits.*field.member);
    });
    writer.endObject();
    return writer.take() + layers;
}

void expect(const std::vector<TranslationCase>& cases)
{
    for (const auto& [steps, edits, report, photo] : cases) {
        std::vector<ApertureAdjustment> adjustments;
        for (const auto& step : steps)
            adjustments.push_back(step.adjustment());
        SCOPED_TRACE(steps[0].name + steps[0].parameters);
        const auto result = translated(adjustments, photo);
        EXPECT_EQ(changes(result.edits), edits);
        EXPECT_EQ(result.report, report);
    }
}

} // namespace korvo
