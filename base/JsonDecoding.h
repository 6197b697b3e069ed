#pragma once

#include "base/Enum.h"
#include "base/JsonConcepts.h"
#include "base/JsonDocument.h"
#include "base/JsonError.h"
#include "base/Record.h"

#include <array>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace korvo {

template <std::same_as<bool> T>
void readJson(JsonValue value, T& result)
{
    result = value.boolean();
}

template <std::same_as<double> T>
void readJson(JsonValue value, T& result)
{
    result = value.number();
}

template <JsonInteger T>
void readJson(JsonValue value, T& result)
{
    const auto integer = value.integer();
    if (!std::in_range<T>(integer))
        throw JsonError(JsonError::Case::wrongNumber, "is out of range");
    result = static_cast<T>(integer);
}

template <JsonOwnedText T>
void readJson(JsonValue value, T& result)
{
    result = T(value.text());
}

/// Takes what a look-up of text found.
template <typename T>
void takeKnown(std::optional<T> known, T& result)
{
    if (!known)
        throw JsonError(JsonError::Case::wrongText, "is not one of the known texts");
    result = *std::move(known);
}

template <JsonParsedText T>
void readJson(JsonValue value, T& result)
{
    takeKnown(T::parse(value.text()), result);
}

template <NamedEnum T>
void readJson(JsonValue value, T& result)
{
    takeKnown(caseNamed<T>(value.text()), result);
}

template <typename T>
void readJson(JsonValue value, std::vector<T>& result)
{
    result.clear();
    try {
        for (const JsonValue element : value.elements())
            readJson(element, result.emplace_back());
    } catch (JsonError& error) {
        if (!result.empty())
            error.within(result.size() - 1);
        throw;
    }
}

/// A field that must be there.
template <typename T>
void readJsonMember(JsonValue value, T& result)
{
    if (!value)
        throw JsonError(JsonError::Case::missingKey, "is missing");
    readJson(value, result);
}

/// A field that may be left out; null says the same.
template <typename T>
void readJsonMember(JsonValue value, std::optional<T>& result)
{
    if (value && !value.isNull())
        readJson(value, result.emplace());
    else
        result.reset();
}

/// The names of a record's fields in declaration order.
template <Record T>
constexpr auto fieldNames()
{
    return std::apply(
        [](const auto&... field) { return std::array<std::string_view, sizeof...(field)>{field.name...}; },
        fieldsOf<T>);
}

template <Record T>
void readJson(JsonValue value, T& record)
{
    static constexpr auto names = fieldNames<T>();
    std::array<JsonValue, names.size()> found;
    value.members(names, found);
    std::size_t at = 0;
    try {
        forEachField<T>([&](const auto& field) {
            readJsonMember(found[at], record.*field.member);
            ++at;
        });
    } catch (JsonError& error) {
        error.within(names[at]);
        throw;
    }
}

/// The value that the text holds, all of it or none: throws JsonError for what JsonDocument refuses, for a
/// missing key of a field that is not optional and for a value of the wrong kind. Unknown keys are passed
/// over; of a key that is there twice the last one counts.
template <typename T>
T fromJson(std::string_view text)
{
    const JsonDocument document(text);
    T value{};
    readJson(document.root(), value);
    return value;
}

} // namespace korvo
