#include "catalog/SmartAlbumRules.h"

#include "base/Json.h"

#include <array>

namespace korvo {

namespace {

using Field = SmartAlbumRule::Field;
using Op = SmartAlbumRule::Op;

constexpr std::array equality{Op::is, Op::isNot};
constexpr std::array ordering{Op::is, Op::isNot, Op::atLeast, Op::atMost};
constexpr std::array searching{Op::contains, Op::notContains, Op::is, Op::isNot};
constexpr std::array nearness{Op::near};

constexpr std::string_view aLabel
    = "needs a label: none, red, orange, yellow, green, blue, purple, gray, or 0 to 7";
constexpr std::string_view yesOrNo = "needs yes or no";

constexpr std::array<SmartAlbumField, 16> fields{{
    {Field::rating, "Rating", RuleValue::number, ordering, "e.g. 3", "needs a number, as 3"},
    {Field::flagged, "Flagged", RuleValue::yesNo, equality, "yes", yesOrNo},
    {Field::label, "Label", RuleValue::label, ordering, "e.g. Red", aLabel},
    {Field::keyword, "Keyword", RuleValue::text, searching},
    {Field::text, "Text", RuleValue::text, searching},
    {Field::kind, "Kind", RuleValue::kind, equality, "photo", "needs photo or video"},
    {Field::hasAlt, "Has ALT Text", RuleValue::yesNo, equality, "yes", yesOrNo},
    {Field::adjusted, "Adjusted", RuleValue::yesNo, equality, "yes", yesOrNo},
    {Field::filename, "File Name", RuleValue::text, searching},
    {Field::date, "Date", RuleValue::day, ordering, "yyyy-mm-dd", "needs a day as yyyy-mm-dd"},
    {Field::fileType, "File Type", RuleValue::fileType, equality, "e.g. jpeg",
        "needs a file extension, as jpeg"},
    {Field::camera, "Camera", RuleValue::text, searching},
    {Field::lens, "Lens", RuleValue::text, searching},
    {Field::focalLength, "Focal Length", RuleValue::number, ordering, "e.g. 50", "needs a number, as 50"},
    {Field::person, "Person", RuleValue::text, searching},
    {Field::location, "Location", RuleValue::place, nearness, "e.g. 800",
        "needs a radius and a place, as 10 km of 48.14, 11.58"},
}};

constexpr std::array<std::string_view, 7> opLabels{
    "is", "is not", "is at least", "is at most", "contains", "does not contain", "is within"};
static_assert(static_cast<std::size_t>(Op::near) + 1 == opLabels.size());

/// What may be left out of the stored text.
struct StoredRules {
    std::optional<std::vector<SmartAlbumRule>> rules;
    std::optional<bool> matchAll;
};
KORVO_RECORD(StoredRules, rules, matchAll)

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
    return opLabels[static_cast<std::size_t>(op)];
}

} // namespace korvo
