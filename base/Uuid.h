#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// A universally unique identifier (RFC 4122).
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    /// A fresh one of version 4, from the system's randomness. Throws std::system_error.
    static Uuid random();

    /// Reads 32 hexadecimal digits of either case, hyphenated 8-4-4-4-12.
    static std::optional<Uuid> parse(std::string_view text);

    /// The canonical form in upper case: "F47AC10B-58CC-4372-A567-0E02B2C3D479".
    std::string text() const;

    auto operator<=>(const Uuid&) const = default;
};

} // namespace korvo

template <>
struct std::hash<korvo::Uuid> {
    std::size_t operator()(const korvo::Uuid& uuid) const;
};
