#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace korvo {

struct JsonMember;
template <typename Item>
class JsonRange;

/// A value inside a JsonDocument, which it must not outlive. Reading it as another kind than it has throws
/// JsonError::Case::wrongKind.
class JsonValue {
public:
    enum class Kind { null, boolean, integer, number, text, array, object };

    /// No value at all.
    JsonValue() = default;
    explicit operator bool() const { return document_ != nullptr; }

    /// `integer` for a number without fraction and exponent that a signed 64-bit integer holds.
    Kind kind() const;
    bool isNull() const { return kind() == Kind::null; }

    bool boolean() const;
    /// Any number.
    double number() const;
    /// A whole number; 90.0 is one. Throws JsonError::Case::wrongNumber for others and beyond 64 bits.
    std::int64_t integer() const;
    std::string_view text() const;
    /// The elements of an array: `for (const JsonValue element : value.elements())`.
    JsonRange<JsonValue> elements() const;
    /// The members of an object in the order of the text: `for (const auto [key, value] : value.members())`.
    JsonRange<JsonMember> members() const;

    /// The member of that name of an object, the last one when there are several; none is no value.
    JsonValue member(std::string_view name) const;
    /// The same for many names in one pass: found[i] becomes the member names[i]. Fastest when the members
    /// stand in the order of the names.
    void members(std::span<const std::string_view> names, std::span<JsonValue> found) const;

private:
    template <typename Item>
    friend class JsonRange;

    // A place on the tape of the parser, whose own types stay out of this header: they take a second to
    // compile.
    const void* document_ = nullptr;
    std::size_t index_ = 0;
};

struct JsonMember {
    std::string_view key;
    JsonValue value;
};

/// What elements() and members() return.
template <typename Item>
class JsonRange {
public:
    class Iterator {
    public:
        explicit Iterator(JsonValue place) : place_(place) { }
        Item operator*() const;
        Iterator& operator++();
        bool operator!=(const Iterator& other) const { return place_.index_ != other.place_.index_; }

    private:
        JsonValue place_;
    };

    JsonRange(JsonValue first, JsonValue end) : first_(first), end_(end) { }
    Iterator begin() const { return Iterator(first_); }
    Iterator end() const { return Iterator(end_); }

private:
    JsonValue first_;
    JsonValue end_;
};

/// Parsed JSON text.
class JsonDocument {
public:
    static constexpr std::size_t maxDepth = 64;
    static constexpr std::size_t maxLength = std::size_t(1) << 31;

    /// Throws JsonError for text that is not one JSON value in UTF-8, that nests more than 64 arrays and
    /// objects, that is longer than 2 GiB, or that holds a number beyond what a double or a 64-bit integer
    /// can hold.
    explicit JsonDocument(std::string_view text);
    JsonDocument(JsonDocument&&) noexcept;
    JsonDocument& operator=(JsonDocument&&) noexcept;
    ~JsonDocument();

    JsonValue root() const;

private:
    struct Parser;
    std::unique_ptr<Parser> parser_;
};

} // namespace korvo
