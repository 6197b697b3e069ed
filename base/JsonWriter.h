#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace korvo {

/// Writes JSON text piece by piece, minding commas, escapes and numbers:
///     JsonWriter json;
///     json.beginObject();
///     json.member("id", 7);
///     json.endObject();
///     print(json.take());
/// The caller pairs begin and end, and gives each value of an object a key. `value` and `member` take all
/// that base/Json.h can write.
class JsonWriter {
public:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    /// Throws JsonError::Case::tooDeep when more than `maxDepth` objects and arrays are nested.
    explicit JsonWriter(std::size_t maxDepth = unlimited) : maxDepth_(maxDepth) { }

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    void key(std::string_view key);

    void null() { raw("null"); }
    void boolean(bool value) { raw(value ? "true" : "false"); }
    void integer(std::int64_t value);
    void integer(std::uint64_t value);
    /// The shortest text that reads back as the same double, -0 included. Throws JsonError::Case::notFinite.
    void number(double value);
    /// Bytes that are not UTF-8 become U+FFFD.
    void text(std::string_view value);

    template <typename T>
    void value(const T& value)
    {
        writeJson(*this, value);
    }

    /// A key and its value.
    template <typename T>
    void member(std::string_view name, const T& member)
    {
        key(name);
        value(member);
    }

    /// A key and its value, or nothing at all when it is not set.
    template <typename T>
    void member(std::string_view name, const std::optional<T>& optional)
    {
        if (optional)
            member(name, *optional);
    }

    /// The text so far; the writer starts anew.
    std::string take() { return std::exchange(text_, {}); }

private:
    void open(char bracket);
    void close(char bracket);
    void raw(std::string_view token);
    void separate();
    void quoted(std::string_view text);

    std::string text_;
    std::size_t depth_ = 0;
    std::size_t maxDepth_;
};

} // namespace korvo
