#pragma once

#include "base/ForEach.h"

#include <array>
#include <optional>
#include <string_view>

namespace korvo {

/// One case of an enumeration and its name, which is what is stored.
template <typename E>
struct EnumCase {
    E value;
    std::string_view name;
};

template <typename E>
constexpr EnumCase<E> enumCase(E value, std::string_view name)
{
    return {value, name};
}

/// An enumeration whose cases were listed with KORVO_ENUM.
template <typename E>
concept NamedEnum = requires(const E* value)
{
    enumCases(value);
};

/// All cases in declaration order, an array of EnumCase.
template <NamedEnum E>
inline constexpr auto casesOf = enumCases(static_cast<const E*>(nullptr));

/// The name of a case.
template <NamedEnum E>
constexpr std::string_view nameOf(E value)
{
    for (const auto& entry : casesOf<E>)
        if (entry.value == value)
            return entry.name;
    return {};
}

/// The case of that name, if there is one.
template <NamedEnum E>
constexpr std::optional<E> caseNamed(std::string_view name)
{
    for (const auto& entry : casesOf<E>)
        if (entry.name == name)
            return entry.value;
    return std::nullopt;
}

} // namespace korvo

/// Lists the cases of an enumeration, after it and in its namespace: KORVO_ENUM(Flag, none, pick, reject).
/// A case that is forgotten is a warning of the switch, a surplus or misspelt one an error.
#define KORVO_ENUM(Type, ...)                                                                                \
    [[maybe_unused]] constexpr auto enumCases(const Type*)                                                   \
    {                                                                                                        \
        return std::array{KORVO_FOR_EACH(KORVO_ENUM_CASE, Type, __VA_ARGS__)};                               \
    }                                                                                                        \
    [[maybe_unused]] constexpr void checkCases(Type value)                                                   \
    {                                                                                                        \
        switch (value) {                                                                                     \
            KORVO_FOR_EACH(KORVO_ENUM_LABEL, Type, __VA_ARGS__)                                              \
            break;                                                                                           \
        }                                                                                                    \
    }

#define KORVO_ENUM_CASE(Type, name) korvo::enumCase(Type::name, #name),
#define KORVO_ENUM_LABEL(Type, name) case Type::name:
