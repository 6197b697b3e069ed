#pragma once

#include "base/Enum.h"
#include "base/JsonConcepts.h"
#include "base/JsonDocument.h"
#include "base/JsonWriter.h"
#include "base/Record.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace korvo {

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

template <JsonText T>
void writeJson(JsonWriter& writer, const T& value)
{
    writer.text(value);
}

template <JsonParsedText T>
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
void writeJson(JsonWriter& writer, std::span<const T> values)
{
    writer.beginArray();
    for (const T& value : values)
        writer.value(value);
    writer.endArray();
}

template <typename T>
void writeJson(JsonWriter& writer, const std::vector<T>& values)
{
    writeJson(writer, std::span<const T>(values));
}

template <typename T, std::size_t Count>
void writeJson(JsonWriter& writer, const std::array<T, Count>& values)
{
    writeJson(writer, std::span<const T>(values));
}

template <Record T>
void writeJson(JsonWriter& writer, const T& record)
{
    writer.beginObject();
    forEachField<T>([&](const auto& field) { writer.member(field.name, record.*field.member); });
    writer.endObject();
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

} // namespace korvo
