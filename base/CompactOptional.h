#pragma once

#include <cmath>
#include <concepts>
#include <limits>
#include <optional>

namespace korvo {

/// An optional number in eight bytes, for records that are held by the million. "Not set" is not a number for
/// doubles, which SQLite stores as NULL too, and the least integer for integers, which no id or count
/// reaches.
template <typename T>
class CompactOptional {
public:
    CompactOptional() = default;
    CompactOptional(T value) : value_(value) { }
    CompactOptional(std::nullopt_t) { }
    CompactOptional(const std::optional<T>& value) : value_(value.value_or(notSet)) { }

    bool has_value() const
    {
        if constexpr (std::floating_point<T>)
            return !std::isnan(value_);
        else
            return value_ != notSet;
    }
    explicit operator bool() const { return has_value(); }
    /// The value, which must be set.
    T operator*() const { return value_; }
    T value_or(T otherwise) const { return has_value() ? value_ : otherwise; }
    operator std::optional<T>() const { return has_value() ? std::optional(value_) : std::nullopt; }

    friend bool operator==(CompactOptional a, CompactOptional b)
    {
        return a.has_value() == b.has_value() && (!a.has_value() || a.value_ == b.value_);
    }

private:
    static constexpr T notSet
        = std::floating_point<T> ? std::numeric_limits<T>::quiet_NaN() : std::numeric_limits<T>::lowest();
    T value_ = notSet;
};

} // namespace korvo
