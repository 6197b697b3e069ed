#pragma once

#include "base/ForEach.h"
#include "base/Hash.h"

#include <concepts>
#include <cstddef>
#include <functional>
#include <string_view>
#include <tuple>

namespace korvo {

/// One field of a record: its name, which is also its JSON key, and where it is.
template <typename T, typename Value>
struct RecordField {
    std::string_view name;
    Value T::*member;
};

template <typename T, typename Value>
constexpr RecordField<T, Value> recordField(std::string_view name, Value T::*member)
{
    return {name, member};
}

/// A plain struct whose fields were listed with KORVO_RECORD.
template <typename T>
concept Record = requires(const T* record)
{
    recordFields(record);
};

/// The fields of a record in declaration order, a tuple of RecordField.
template <Record T>
inline constexpr auto fieldsOf = recordFields(static_cast<const T*>(nullptr));

/// Calls `visit(field)` with each RecordField in declaration order.
template <Record T, typename Visit>
constexpr void forEachField(Visit&& visit)
{
    std::apply([&](const auto&... field) { (visit(field), ...); }, fieldsOf<T>);
}

/// Whether all fields of two records are equal.
template <Record T>
bool equalFields(const T& a, const T& b)
{
    return std::apply(
        [&](const auto&... field) { return ((a.*field.member == b.*field.member) && ...); }, fieldsOf<T>);
}

} // namespace korvo

/// Lists the fields of a struct, after it and in its namespace: KORVO_RECORD(CropRect, x, y, w, h). Equality,
/// hashing and JSON follow from the list. A field that is forgotten, surplus or misspelt does not compile: a
/// structured binding takes exactly as many names as there are fields, and each name must be a member's. What
/// is defined are templates, so that only those sources pay for a long list that use it.
#define KORVO_RECORD(Type, ...)                                                                              \
    template <std::same_as<Type> T>                                                                          \
    [[maybe_unused]] constexpr auto recordFields(const T*)                                                   \
    {                                                                                                        \
        return std::tuple{KORVO_FOR_EACH(KORVO_RECORD_FIELD, Type, __VA_ARGS__)};                            \
    }                                                                                                        \
    [[maybe_unused]] inline void checkFieldCount(const Type& korvoRecord)                                    \
    {                                                                                                        \
        [[maybe_unused]] const auto& [__VA_ARGS__] = korvoRecord;                                            \
    }                                                                                                        \
    template <std::same_as<Type> T>                                                                          \
    [[maybe_unused]] bool operator==(const T& a, const T& b)                                                 \
    {                                                                                                        \
        return korvo::equalFields(a, b);                                                                     \
    }

#define KORVO_RECORD_FIELD(Type, field) korvo::recordField(#field, &Type::field),

template <korvo::Record T>
struct std::hash<T> {
    std::size_t operator()(const T& record) const
    {
        std::size_t result = 0;
        korvo::forEachField<T>([&](const auto& field) {
            result = korvo::combinedHash(result, korvo::hashOf(record.*field.member));
        });
        return result;
    }
};
