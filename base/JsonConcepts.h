#pragma once

#include <concepts>
#include <optional>
#include <string_view>
#include <utility>

namespace korvo {

/// Integers of any width.
template <typename T>
concept JsonInteger = std::integral<T> && !std::same_as<T, bool>;

/// What reads as text: literals, std::string, SharedText.
template <typename T>
concept JsonText = std::convertible_to<const T&, std::string_view>;

/// Text that can also be made from text; a view cannot, as nothing would keep its characters.
template <typename T>
concept JsonOwnedText
    = JsonText<T> && std::constructible_from<T, std::string_view> && !std::same_as<T, std::string_view>;

/// What is stored as text that not every text is, as a Uuid: T::parse gives nothing for one it does not know.
template <typename T>
concept JsonParsedText = std::same_as<decltype(T::parse(std::string_view())),
    std::optional<T>> && std::convertible_to<decltype(std::declval<const T&>().text()), std::string_view>;

} // namespace korvo
