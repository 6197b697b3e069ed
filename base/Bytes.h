#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace korvo {

/// A bounded view of bytes from outside. Every range is checked once, by subtraction, so that no sum can
/// wrap; what does not fit is std::nullopt. The bytes must outlive the view.
class Bytes {
public:
    Bytes() = default;
    Bytes(const void* data, std::size_t size) : data_(static_cast<const std::uint8_t*>(data)), size_(size) { }
    explicit Bytes(std::span<const std::uint8_t> span) : Bytes(span.data(), span.size()) { }
    explicit Bytes(std::string_view text) : Bytes(text.data(), text.size()) { }

    const std::uint8_t* data() const { return data_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    /// The byte at an offset that the caller knows to be inside.
    std::uint8_t operator[](std::size_t offset) const { return data_[offset]; }

    /// `length` bytes from `offset` on, or nothing when they do not all lie inside.
    std::optional<Bytes> slice(std::uint64_t offset, std::uint64_t length) const
    {
        if (offset > size_ || length > size_ - offset)
            return std::nullopt;
        return Bytes(data_ + offset, static_cast<std::size_t>(length));
    }

    /// Everything from `offset` on; empty when that lies outside.
    Bytes from(std::uint64_t offset) const
    {
        return offset > size_ ? Bytes() : Bytes(data_ + offset, size_ - static_cast<std::size_t>(offset));
    }

    /// An unsigned integer of `width` bytes (1 to 8), most significant first.
    std::optional<std::uint64_t> bigEndian(std::uint64_t offset, unsigned width) const
    {
        const auto bytes = slice(offset, width);
        if (!bytes)
            return std::nullopt;
        std::uint64_t value = 0;
        for (unsigned i = 0; i < width; ++i)
            value = value << 8 | (*bytes)[i];
        return value;
    }

    /// An unsigned integer of `width` bytes (1 to 8), least significant first.
    std::optional<std::uint64_t> littleEndian(std::uint64_t offset, unsigned width) const
    {
        const auto bytes = slice(offset, width);
        if (!bytes)
            return std::nullopt;
        std::uint64_t value = 0;
        for (unsigned i = width; i > 0; --i)
            value = value << 8 | (*bytes)[i - 1];
        return value;
    }

    /// Whether the bytes at `offset` are those of `text`.
    bool startsWith(std::string_view text, std::uint64_t offset = 0) const
    {
        const auto bytes = slice(offset, text.size());
        return bytes && bytes->text() == text;
    }

    std::string_view text() const { return {reinterpret_cast<const char*>(data_), size_}; }

private:
    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace korvo
