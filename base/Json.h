#pragma once

#include "base/Enum.h"
#include "base/JsonDocument.h"
#include "base/JsonError.h"
#include "base/JsonWriter.h"
#include "base/Record.h"

#include <array>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

/// Values to JSON text and back:
///     std::string text = toJson(edits);
///     auto edits = fromJson<PhotoEdits>(text);
/// Goes through bool, integers, double, text of any type, types with `parse` and `text`, enumerations listed
/// with KORVO_ENUM, records listed with KORVO_RECORD, std::vector of these, and std::optional fields of
/// records. A further type is added by a `writeJson` and a `readJson` of its own.
namespace korvo {

/// std::string and what else is made of characters and gives them back.
template <typename T>
concept JsonText = std::convertible_to<const T&, std::string_view> && std::constructible_from<T,
    std::string_view> && !std::same_as<T, std::string_view>;

/// What is stored as text that not every text is: T::parse gives nothing for one it does not know.
template <typename T>
concept JsonParsed = requires(const T& value, std::string_view text)
{
    {
        T::parse(text)
        } -> std::same_as<std::optional<T>>;
    {
        value.text()
        } -> std::convertible_to<std::string_view>;
};

template <typename T>
concept JsonInteger = std::integral<T> && !std::same_as<T, bool>;

template <std::same_as<bool> T>
void writeJson(JsonWriter& writer, T value)
{
    writer.boolean(value);
}

template <std::same_as<double> T>
void writeJson(JsonWriter& writer, T value)
{
    writer.number(value);
}

template <JsonInteger T>
void writeJson(JsonWriter& writer, T value)
{
    using Widest = std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>;
    writer.integer(static_cast<Widest>(value));
}

template <std::convertible_to<std::string_view> T>
void writeJson(JsonWriter& writer, const T& value)
{
    writer.text(value);
}

template <JsonParsed T>
void writeJson(JsonWriter& writer, const T& value)
{
    writer.text(value.text());
}

template <NamedEnum T>
void writeJson(JsonWriter& writer, T value)
{
    writer.text(nameOf(value));
}

template <typename T>
void writeJson(JsonWriter& writer, const std::vector<T>& values)
{
    writer.beginArray();
    for (const auto& value : values)
        writer.value(value);
    writer.endArray();
}

template <Record T>
void writeJson(JsonWriter& writer, const T& record)
{
    writer.beginObject();
    forEachField<T>([&](const auto& field) { writer.member(field.name, record.*field.member); });
    writer.endObject();
}

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

template <JsonText T>
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

template <JsonParsed T>
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

/// The value as JSON text without white space: fields in declaration order, those not set left out. Throws
/// JsonError for numbers that are not finite and for more than 64 nested layers.
template <typename T>
std::string toJson(const T& value)
{
    JsonWriter writer(JsonDocument::maxDepth);
    writer.value(value);
    return writer.take();
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
