#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace korvo {

/// A colour label, as stored.
enum class PhotoLabel : std::uint8_t { none, red, orange, yellow, green, blue, purple, gray };

inline constexpr std::array<std::string_view, 8> photoLabelNames
    = {"No Label", "Red", "Orange", "Yellow", "Green", "Blue", "Purple", "Gray"};

/// The name shown to the user.
inline std::string_view name(PhotoLabel label)
{
    return photoLabelNames[static_cast<std::size_t>(label)];
}

/// The label of a stored integer; nothing for any other than 0 to 7.
inline std::optional<PhotoLabel> photoLabel(std::int64_t stored)
{
    if (stored < 0 || stored > 7)
        return std::nullopt;
    return static_cast<PhotoLabel>(stored);
}

/// The label that a person means by a text: its name, whatever the case, "none" or its number.
std::optional<PhotoLabel> labelNamed(std::string_view text);

} // namespace korvo
