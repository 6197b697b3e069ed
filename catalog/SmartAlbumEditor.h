#pragma once

#include <cstddef>
#include <string>
#include <string_view>

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
inline constexpr std::string_view removeRule = "Remove this rule";
inline constexpr std::string_view kilometresOf = "km of"; // between the radius and the place
inline constexpr std::string_view placeFound = "Found";
inline constexpr std::string_view placeNotFound = "Couldn't find that place";
inline constexpr std::string_view cancel = "Cancel";
inline constexpr std::string_view create = "Create";
inline constexpr std::string_view save = "Save";

} // namespace smartAlbumEditor

/// The line below the rules: "1 photo match", "12 photos match".
std::string matchCountText(std::size_t count);

} // namespace korvo
