#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace korvo {

/// Immutable text in one pointer: copies share their characters, and empty text costs nothing but the
/// pointer. For records that are held by the million. Copies may be used on different threads.
class SharedText {
public:
    SharedText() = default;
    SharedText(std::string_view text) : block_(text.empty() ? nullptr : allocate(text)) { }
    SharedText(const std::string& text) : SharedText(std::string_view(text)) { }
    SharedText(const char* text) : SharedText(std::string_view(text)) { }
    SharedText(const SharedText& other) : block_(other.block_) { retain(); }
    SharedText(SharedText&& other) noexcept : block_(std::exchange(other.block_, nullptr)) { }
    SharedText& operator=(SharedText other) noexcept
    {
        std::swap(block_, other.block_);
        return *this;
    }
    ~SharedText() { release(); }

    std::string_view view() const { return block_ ? viewOf(block_) : std::string_view(); }
    operator std::string_view() const { return view(); }
    std::string string() const { return std::string(view()); }
    bool empty() const { return !block_; }
    std::size_t size() const { return view().size(); }

    /// Whether both are the same characters in memory; equal texts may still be different ones.
    bool sharesWith(const SharedText& other) const { return block_ == other.block_; }

    friend bool operator==(const SharedText& a, const SharedText& b)
    {
        return a.sharesWith(b) || a.view() == b.view();
    }
    template <typename Text>
    requires(
        std::convertible_to<const Text&, std::string_view> && !std::same_as<Text, SharedText>) friend bool
    operator==(const SharedText& a, const Text& b)
    {
        return a.view() == std::string_view(b);
    }
    friend std::ostream& operator<<(std::ostream& stream, const SharedText& text)
    {
        return stream << text.view();
    }

private:
    struct Block;
    static Block* allocate(std::string_view text);
    static std::string_view viewOf(const Block* block);
    void retain() const;
    void release();

    Block* block_ = nullptr;
};

} // namespace korvo

template <>
struct std::hash<korvo::SharedText> {
    std::size_t operator()(const korvo::SharedText& text) const
    {
        return std::hash<std::string_view>()(text.view());
    }
};
