#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace korvo {

/// The hash of a sequence that goes on with `next`; mixes as Boost's hash_combine does, for 64 bits.
constexpr std::size_t combinedHash(std::size_t hash, std::size_t next)
{
    return hash ^ (next + 0x9E3779B97F4A7C15U + (hash << 6) + (hash >> 2));
}

/// The hash of a value; equal values have equal hashes. Unlike std::hash it goes through lists.
template <typename T>
std::size_t hashOf(const T& value)
{
    return std::hash<T>()(value);
}

template <typename T>
std::size_t hashOf(const std::optional<T>& value);

template <typename T>
std::size_t hashOf(const std::vector<T>& values)
{
    std::size_t hash = values.size();
    for (const auto& value : values)
        hash = combinedHash(hash, hashOf(value));
    return hash;
}

template <typename T>
std::size_t hashOf(const std::optional<T>& value)
{
    return value ? combinedHash(1, hashOf(*value)) : 0;
}

} // namespace korvo
