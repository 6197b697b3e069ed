#include "catalog/SmartAlbumRules.h"

#include "base/Json.h"
#include "catalog/RuleTest.h"

#include <algorithm>
#include <array>

namespace korvo {

namespace {

using Field = SmartAlbumRule::Field;
using Op = SmartAlbumRule::Op;

constexpr std::array equality{Op::is, Op::isNot};
constexpr std::array ordering{Op::is, Op::isNot, Op::atLeast, Op::atMost};
constexpr std::array searching{Op::contains, Op::notContains, Op::is, Op::isNot};
constexpr std::array nearness{Op::near};

constexpr std::array<SmartAlbumField, 16> fields{{
    {Field::rating, "Rating", RuleValue::number, ordering},
    {Field::flagged, "Flagged", RuleValue::yesNo, equality},
    {Field::label, "Label", RuleValue::label, ordering},
    {Field::keyword, "Keyword", RuleValue::text, searching},
    {Field::text, "Text", RuleValue::text, searching},
    {Field::kind, "Kind", RuleValue::kind, equality},
    {Field::hasAlt, "Has ALT Text", RuleValue::yesNo, equality},
    {Field::adjusted, "Adjusted", RuleValue::yesNo, equality},
    {Field::filename, "File Name", RuleValue::text, searching},
    {Field::date, "Date", RuleValue::day, ordering},
    {Field::fileType, "File Type", RuleValue::fileType, equality},
    {Field::camera, "Camera", RuleValue::text, searching},
    {Field::lens, "Lens", RuleValue::text, searching},
    {Field::focalLength, "Focal Length", RuleValue::number, ordering},
    {Field::person, "Person", RuleValue::text, searching},
    {Field::location, "Location", RuleValue::place, nearness},
}};

struct ValueTexts {
    RuleValue value;
    std::string_view hint;
    std::string_view needs;
};

constexpr ValueTexts valueTexts[] = {
    {RuleValue::text, "", "needs a text"},
    {RuleValue::number, "e.g. 50", "needs a number, as 50"},
    {RuleValue::label, "e.g. Red",
        "needs a label: none, red, orange, yellow, green, blue, purple, gray, or 0 to 7"},
    {RuleValue::day, "yyyy-mm-dd", "needs a day as yyyy-mm-dd"},
    {RuleValue::kind, "photo", "needs photo or video"},
    {RuleValue::fileType, "e.g. jpeg", "needs a file extension, as jpeg"},
    {RuleValue::yesNo, "yes", "needs yes or no"},
    {RuleValue::place, "", "needs a radius and a place, as 10 km of 48.14, 11.58"},
};

struct OpLabel {
    Op op;
    std::string_view label;
};

constexpr OpLabel opLabels[]
    = {{Op::is, "is"}, {Op::isNot, "is not"}, {Op::atLeast, "is at least"}, {Op::atMost, "is at most"},
        {Op::contains, "contains"}, {Op::notContains, "does not contain"}, {Op::near, "is within"}};

/// What may be left out of the stored text.
struct StoredRules {
    std::optional<std::vector<SmartAlbumRule>> rules;
    std::optional<bool> matchAll;
};
KORVO_RECORD(StoredRules, rules, matchAll)

const ValueTexts& textsOf(RuleValue value)
{
    return valueTexts[static_cast<std::size_t>(value)];
}

} // namespace

SmartAlbumRules smartAlbumRules(std::string_view json)
{
    auto stored = fromJson<StoredRules>(json);
    return {std::move(stored.rules).value_or(std::vector<SmartAlbumRule>()), stored.matchAll.value_or(true)};
}

std::span<const SmartAlbumField> smartAlbumFields()
{
    return fields;
}

const SmartAlbumField& fieldOf(const SmartAlbumRule& rule)
{
    return fields[static_cast<std::size_t>(rule.field)];
}

std::string_view label(Op op)
{
    return opLabels[static_cast<std::size_t>(op)].label;
}

std::string_view hint(RuleValue value)
{
    return textsOf(value).hint;
}

std::optional<std::string> fault(const SmartAlbumRule& rule)
{
    const auto& field = fieldOf(rule);
    const auto named = "“" + std::string(field.title) + "” ";
    if (std::find(field.ops.begin(), field.ops.end(), rule.op) == field.ops.end())
        return named + "does not take “" + std::string(label(rule.op)) + "”";
    if (!ruleTest(rule))
        return named + std::string(textsOf(field.value).needs) + ", not “" + rule.value + "”";
    return std::nullopt;
}

} // namespace korvo
