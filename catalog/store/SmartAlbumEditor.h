#pragma once

#include "catalog/SmartAlbumRules.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// The texts of the sheet that makes and changes smart albums.
namespace smartAlbumEditor {

inline constexpr std::string_view newTitle = "New Smart Album";
inline constexpr std::string_view editTitle = "Edit Smart Album";
inline constexpr std::string_view name = "Name";
inline constexpr std::string_view match = "Match"; // then all or any
inline constexpr std::string_view all = "all";
inline constexpr std::string_view any = "any";
inline constexpr std::string_view ofTheRules = "of the following rules:";
inline constexpr std::string_view field = "Field";
inline constexpr std::string_view op = "Operator";
inline constexpr std::string_view value = "Value";
inline constexpr std::string_view addRule = "Add a rule";
inline constexpr std::string_view counting = "Counting…";
inline constexpr std::string_view placeHint = "e.g. 48.137, 11.575";
inline constexpr std::string_view removeRule = "Remove this rule";
inline constexpr std::string_view kilometresOf = "km of"; // between the radius and the place
inline constexpr std::string_view placeFound = "Found";
inline constexpr std::string_view placeNotFound = "Couldn't find that place";
inline constexpr std::string_view cancel = "Cancel";
inline constexpr std::string_view create = "Create";
inline constexpr std::string_view save = "Save";

} // namespace smartAlbumEditor

/// The values that a field of this kind can have, where they are few; else none, and the value is typed.
std::vector<std::string> valueChoices(RuleValue kind);

/// A new row of the editor.
SmartAlbumRule newRule();

/// The rule after another field was chosen: the operator and the value stay as far as they fit.
SmartAlbumRule withField(const SmartAlbumRule& rule, SmartAlbumRule::Field field);

/// The two texts that the value of `near` is typed as.
struct NearTexts {
    std::string kilometres;
    std::string place;

    friend bool operator==(const NearTexts&, const NearTexts&) = default;
};
NearTexts nearTexts(std::string_view value);
std::string nearValue(const NearTexts& texts);
/// Whether the text names a position.
bool isPlace(std::string_view place);

/// What the editor says instead of rows for rules that this program cannot read.
std::string unreadableRulesText(std::string_view reason);

/// The line below the rules: "1 photo match", "12 photos match".
std::string matchCountText(std::size_t count);

} // namespace korvo
