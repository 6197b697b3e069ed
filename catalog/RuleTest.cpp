#include "catalog/RuleTest.h"

#include "base/Text.h"
#include "catalog/FileTypes.h"

#include <algorithm>
#include <limits>

namespace korvo {

namespace {

using Field = SmartAlbumRule::Field;
using Op = SmartAlbumRule::Op;

constexpr double forever = std::numeric_limits<double>::infinity();

std::optional<double> labelNumber(std::string_view value)
{
    const auto label = labelNamed(value);
    return label ? std::optional<double>(static_cast<int>(*label)) : std::nullopt;
}

/// An empty value is a yes: "Flagged is".
std::optional<bool> yesNo(std::string_view value)
{
    const auto text = asciiLower(trimmed(value));
    if (text.empty() || text == "yes" || text == "true" || text == "1")
        return true;
    return text == "no" || text == "false" || text == "0" ? std::optional(false) : std::nullopt;
}

/// The spelling that two of one type share.
std::string_view oneSpelling(std::string_view extension)
{
    if (compareNoCase(extension, "jpg") == 0)
        return "jpeg";
    return compareNoCase(extension, "tif") == 0 ? "tiff" : extension;
}

std::optional<FileTypeTest> fileTypeTest(std::string_view value)
{
    auto text = trimmed(value);
    if (text.starts_with('.'))
        text.remove_prefix(1);
    return text.empty() ? std::nullopt : std::optional(FileTypeTest{asciiLower(oneSpelling(text))});
}

std::optional<VideoTest> kindTest(std::string_view value)
{
    const auto text = trimmed(value);
    if (compareNoCase(text, "video") == 0)
        return VideoTest{true};
    return compareNoCase(text, "photo") == 0 ? std::optional(VideoTest{false}) : std::nullopt;
}

std::optional<DateTest> dateTest(Op op, std::string_view value)
{
    const auto day = localDaySpan(trimmed(value));
    if (!day)
        return std::nullopt;
    return DateTest{op == Op::atMost ? -forever : day->start, op == Op::atLeast ? forever : day->end};
}

template <typename Test>
std::optional<RuleTest> ready(std::optional<Test> test)
{
    return test ? std::optional(RuleTest{*std::move(test)}) : std::nullopt;
}

std::optional<RuleTest> positiveTest(const SmartAlbumRule& rule)
{
    const auto numberTest = [&](double wanted) {
        return NumberTest{
            rule.field, rule.op == Op::atMost ? -forever : wanted, rule.op == Op::atLeast ? forever : wanted};
    };
    const auto mapped
        = [](const auto& value, auto make) { return value ? std::optional(make(*value)) : std::nullopt; };
    switch (fieldOf(rule).value) {
    case RuleValue::text:
        return RuleTest{TextTest(rule)};
    case RuleValue::number:
        return ready(mapped(typedNumber(rule.value), numberTest));
    case RuleValue::label:
        return ready(mapped(labelNumber(rule.value), numberTest));
    case RuleValue::day:
        return ready(dateTest(rule.op, rule.value));
    case RuleValue::kind:
        return ready(kindTest(rule.value));
    case RuleValue::fileType:
        return ready(fileTypeTest(rule.value));
    case RuleValue::yesNo:
        return ready(mapped(yesNo(rule.value), [&](bool wanted) { return YesNoTest{rule.field, wanted}; }));
    case RuleValue::place:
        return ready(mapped(parseNearPlace(rule.value),
            [](const NearPlace& place) { return LocationTest{NearTest(place)}; }));
    }
    return std::nullopt;
}

/// NaN where there is none, which lies in no range.
double numberOf(const PhotoItem& item, Field field)
{
    switch (field) {
    case Field::rating:
        return std::max(item.rating, rejectedRating); // the stars beneath a rejection do not count
    case Field::label:
        return static_cast<double>(item.label);
    default:
        return item.focalLength.value_or(std::numeric_limits<double>::quiet_NaN());
    }
}

bool isList(Field field)
{
    return field == Field::keyword || field == Field::person;
}

bool takesOperator(const SmartAlbumRule& rule)
{
    const auto ops = fieldOf(rule).ops;
    return std::find(ops.begin(), ops.end(), rule.op) != ops.end();
}

} // namespace

bool YesNoTest::holds(const PhotoItem& item) const
{
    switch (field) {
    case Field::flagged:
        return item.flagged == wanted;
    case Field::hasAlt:
        return !item.metadata.altText.empty() == wanted;
    default:
        return item.hasEdits() == wanted;
    }
}

bool NumberTest::holds(const PhotoItem& item) const
{
    const double value = numberOf(item, field);
    return value >= least && value <= most;
}

bool DateTest::holds(const PhotoItem& item) const
{
    const auto date = item.takenAt();
    return date && *date >= from && *date < to;
}

bool VideoTest::holds(const PhotoItem& item) const
{
    return isVideo(item.filename) == wanted;
}

bool FileTypeTest::holds(const PhotoItem& item) const
{
    return compareNoCase(oneSpelling(extensionOf(item.filename)), extension) == 0;
}

TextTest::TextTest(const SmartAlbumRule& rule)
    : field_(rule.field), whole_(rule.op == Op::is || rule.op == Op::isNot),
      wanted_(folded(isList(rule.field) ? trimmed(rule.value) : std::string_view(rule.value)))
{ }

bool TextTest::fits(std::string_view text) const
{
    return whole_ ? text == wanted_ : text.find(wanted_) != text.npos;
}

/// A list without entries counts as one empty one.
bool TextTest::fitsAnEntry(std::string_view list) const
{
    bool isEmpty = true;
    for (;;) {
        const auto comma = list.find(',');
        const auto entry = trimmed(list.substr(0, comma));
        isEmpty = isEmpty && entry.empty();
        if (!entry.empty() && fits(entry))
            return true;
        if (comma == list.npos)
            return isEmpty && fits({});
        list.remove_prefix(comma + 1);
    }
}

bool TextTest::holdsFor(std::string_view folded) const
{
    if (field_ == Field::keyword)
        return fitsAnEntry(folded);
    // A person's name may hold a comma itself.
    return fits(folded) || (field_ == Field::person && whole_ && fitsAnEntry(folded));
}

bool TextTest::holdsFor(const SharedText& text, std::size_t place, TextFolder& folder)
{
    if (text.empty()) // as most are: without folding and searching
        return wanted_.empty();
    auto& known = known_[place];
    if (known.text.sharesWith(text))
        return known.holds;
    const bool holds = holdsFor(folder.fold(text));
    if (!folder.lastWasAscii())
        known = {text, holds};
    return holds;
}

bool TextTest::holds(const PhotoItem& item, TextFolder& folder)
{
    const auto holdsForOne = [&](const SharedText& text) { return holdsFor(text, 0, folder); };
    switch (field_) {
    case Field::keyword:
        return holdsForOne(item.metadata.keywords);
    case Field::filename:
        return holdsForOne(item.filename);
    case Field::camera:
        return holdsForOne(item.camera);
    case Field::lens:
        return holdsForOne(item.lens);
    case Field::person:
        return holdsForOne(item.people);
    default:
        break;
    }
    return holdsForOneOf(item.metadata, folder);
}

bool TextTest::holdsForOneOf(const PhotoMetadata& texts, TextFolder& folder)
{
    // All sizes are asked for before the first text is read: memory then brings the texts at the same time.
    std::size_t size = 0;
    forEachField<PhotoMetadata>([&](const auto& field) { size += (texts.*field.member).size(); });
    if (wanted_.empty()) // "is" means no text at all, rather than one of six that is missing
        return size == 0 || !whole_;
    std::size_t place = 0;
    bool found = false;
    forEachField<PhotoMetadata>([&](const auto& field) {
        found = found || holdsFor(texts.*field.member, place, folder);
        ++place;
    });
    return found;
}

bool RuleTest::holds(const PhotoItem& item, TextFolder& folder)
{
    const bool positive = std::visit(
        [&](auto& kind) {
            if constexpr (std::is_same_v<std::decay_t<decltype(kind)>, TextTest>)
                return kind.holds(item, folder);
            else
                return kind.holds(item);
        },
        test);
    return positive != negated;
}

std::optional<RuleTest> ruleTest(const SmartAlbumRule& rule)
{
    if (!takesOperator(rule))
        return std::nullopt;
    auto test = positiveTest(rule);
    if (test)
        test->negated = rule.op == Op::isNot || rule.op == Op::notContains;
    return test;
}

std::optional<std::string> fault(const SmartAlbumRule& rule)
{
    const auto& field = fieldOf(rule);
    const auto named = "“" + std::string(field.title) + "” ";
    if (!takesOperator(rule))
        return named + "does not take “" + std::string(label(rule.op)) + "”";
    if (!ruleTest(rule))
        return named + std::string(field.needs) + ", not “" + rule.value + "”";
    return std::nullopt;
}

} // namespace korvo
