#include "catalog/store/SmartAlbumEditor.h"

#include "base/Text.h"
#include "catalog/NearPlace.h"
#include "catalog/PhotoLabel.h"

#include <algorithm>

namespace korvo {

namespace {

constexpr std::string_view between = " km of ";

} // namespace

std::vector<std::string> valueChoices(RuleValue kind)
{
    switch (kind) {
    case RuleValue::yesNo:
        return {"yes", "no"};
    case RuleValue::kind:
        return {"photo", "video"};
    case RuleValue::label:
        return {photoLabelNames.begin(), photoLabelNames.end()};
    default:
        return {};
    }
}

SmartAlbumRule newRule()
{
    return {SmartAlbumRule::Field::rating, SmartAlbumRule::Op::atLeast, "3"};
}

SmartAlbumRule withField(const SmartAlbumRule& rule, SmartAlbumRule::Field field)
{
    SmartAlbumRule changed{field, rule.op, {}};
    const auto& now = fieldOf(changed);
    if (std::find(now.ops.begin(), now.ops.end(), rule.op) == now.ops.end())
        changed.op = now.ops.front();
    const auto choices = valueChoices(now.value);
    if (now.value == fieldOf(rule).value)
        changed.value = rule.value;
    else if (!choices.empty())
        changed.value = choices.front();
    return changed;
}

NearTexts nearTexts(std::string_view value)
{
    if (const auto at = value.find(between); at != value.npos)
        return {std::string(trimmed(value.substr(0, at))),
            std::string(trimmed(value.substr(at + between.size())))};
    const auto place = parseNearPlace(value); // in another of the ways it may be stored
    return place ? nearTexts(text(*place)) : NearTexts{"", std::string(trimmed(value))};
}

std::string nearValue(const NearTexts& texts)
{
    return texts.kilometres + std::string(between) + texts.place;
}

bool isPlace(std::string_view place)
{
    return parseNearPlace("1" + std::string(between) + std::string(place)).has_value();
}

std::string unreadableRulesText(std::string_view reason)
{
    return "The rules of this album cannot be read here: " + std::string(reason)
        + ". They stay as they are; only the name can be changed.";
}

std::string matchCountText(std::size_t count)
{
    return counted(count, "photo") + " match";
}

} // namespace korvo
