#include "aperture/SmartAlbumConversion.h"

#include "catalog/RuleTest.h"

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

using Field = SmartAlbumRule::Field;
using Op = SmartAlbumRule::Op;

constexpr std::pair<std::string_view, Field> fieldsByKey[] = {
    {"basicProperties.MainRating", Field::rating},
    {"basicProperties.isFlagged", Field::flagged},
    {"isFlagged", Field::flagged},
    {"basicProperties.ColorLabel", Field::label},
    {"basicProperties.Keywords", Field::keyword},
    {"basicProperties.FileName", Field::filename},
    {"basicProperties.isAdjusted", Field::adjusted},
    {"hasEnabledAdjustments", Field::adjusted},
    {"exifProperties.Make", Field::camera},
    {"exifProperties.Model", Field::camera},
    {"exifProperties.LensModel", Field::lens},
    {"exifProperties.FocalLength", Field::focalLength},
};

constexpr std::pair<std::int64_t, Op> opsByQualifier[]
    = {{5, Op::is}, {6, Op::isNot}, {8, Op::atLeast}, {23, Op::contains}};

template <typename Key, typename Value, std::size_t N>
std::optional<Value> lookUp(const std::pair<Key, Value> (&table)[N], std::optional<Key> key)
{
    const auto found = std::find_if(
        std::begin(table), std::end(table), [&](const auto& entry) { return entry.first == key; });
    return found == std::end(table) ? std::nullopt : std::optional(found->second);
}

template <typename T>
std::optional<T> memberAs(
    const BinaryPlist::Value& query, std::string_view key, std::optional<T> (BinaryPlist::Value::*as)() const)
{
    const auto* const value = query.member(key);
    return value ? (value->*as)() : std::nullopt;
}

/// Numbers and booleans are both found as truth values.
std::optional<bool> truth(const BinaryPlist::Value* value)
{
    if (!value)
        return std::nullopt;
    if (const auto number = value->number())
        return *number != 0;
    return value->boolean();
}

std::optional<std::string> wholeNumber(const BinaryPlist::Value& value, std::int64_t added = 0)
{
    const auto number = value.number();
    constexpr double largest = 1e15; // beyond it not every whole number is there; NaN is not below it either
    if (!number || !(std::abs(*number) < largest) || *number != std::trunc(*number))
        return std::nullopt;
    return std::to_string(static_cast<std::int64_t>(*number) + added);
}

/// The value as our rule of that field holds it.
std::optional<std::string> ruleValue(Field field, const BinaryPlist::Value& value)
{
    switch (field) {
    case Field::flagged:
    case Field::adjusted: {
        const auto wanted = truth(&value);
        return wanted ? std::optional<std::string>(*wanted ? "yes" : "no") : std::nullopt;
    }
    case Field::label: // Aperture counts the colours from 0, and none is -1
        return wholeNumber(value, 1);
    case Field::rating:
    case Field::focalLength:
        return wholeNumber(value);
    default:
        return value.text() ? std::optional<std::string>(*value.text()) : std::nullopt;
    }
}

/// A camera has its maker and model in one text.
Op opFor(Field field, Op op)
{
    if (field == Field::camera && op == Op::is)
        return Op::contains;
    return field == Field::camera && op == Op::isNot ? Op::notContains : op;
}

std::optional<SmartAlbumRule> convertRule(const BinaryPlist::Value& query)
{
    using Query = BinaryPlist::Value;
    const auto field = lookUp(fieldsByKey, memberAs(query, "queryPropertyKey", &Query::text));
    const auto op = lookUp(opsByQualifier, memberAs(query, "queryQualifier", &Query::integer));
    const auto* const value = query.member("queryFirstValue");
    if (!field || !op || !value)
        return std::nullopt;
    auto text = ruleValue(*field, *value);
    if (!text)
        return std::nullopt;
    SmartAlbumRule rule{*field, opFor(*field, *op), *std::move(text)};
    return fault(rule) ? std::nullopt : std::optional(std::move(rule));
}

bool isEnabled(const BinaryPlist::Value& query)
{
    return truth(query.member("queryIsEnabled")).value_or(true);
}

/// "Rating is at least rejected" holds for every photo.
bool showsAll(const SmartAlbumRule& rule)
{
    return rule.field == Field::rating && rule.op == Op::atLeast && rule.value == "-1";
}

} // namespace

std::optional<SmartAlbumRules> convertSmartAlbum(const BinaryPlist::Value& query)
{
    const auto* const subqueries = query.member("querySubqueries");
    if (!subqueries || subqueries->kind() != BinaryPlist::Value::Kind::array)
        return std::nullopt;
    SmartAlbumRules rules;
    rules.matchAll = truth(query.member("queryMatchType")).value_or(true);
    for (const auto& subquery : subqueries->elements()) {
        if (!isEnabled(subquery))
            continue;
        auto rule = subquery.member("querySubqueries") ? std::nullopt : convertRule(subquery);
        if (!rule)
            return std::nullopt;
        if (!showsAll(*rule))
            rules.rules.push_back(*std::move(rule));
        else if (!rules.matchAll)
            return SmartAlbumRules(); // any rule is enough, and this one holds always
    }
    return rules;
}

} // namespace korvo
