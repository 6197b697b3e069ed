#pragma once

#include "metadata/containers/FileWindow.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace korvo {

/// A TIFF structure (TIFF 6.0, section 2) in either byte order: the EXIF block of a photo, or a whole TIFF or
/// raw file. Offsets that loop and counts that lie cost bounded work; entries whose values lie outside are
/// left out.
class ExifBlock {
public:
    /// One entry of a directory.
    struct Entry {
        std::uint16_t tag = 0;
        std::uint16_t type = 0;
        std::uint32_t count = 0;
        std::uint32_t offset = 0; ///< in the block, of the values, unless they fit into the entry itself
        std::uint64_t inlineOffset = 0; ///< of the values if they do
    };

    /// Nothing when no TIFF header stands at the beginning of the range.
    static std::optional<ExifBlock> open(FileWindow& file, ByteRange block);

    /// Offset in the block of the first directory.
    std::uint32_t firstDirectory() const { return firstDirectory_; }

    /// Calls `visit` with each entry of the directory at an offset in the block.
    template <class Visit>
    void forEachEntry(std::uint32_t directory, Visit visit) const
    {
        const auto entries = directoryBytes(directory);
        for (std::size_t at = 0; at < entries.size(); at += entrySize)
            visit(Entry{static_cast<std::uint16_t>(unsignedAt(entries, at, 2)),
                static_cast<std::uint16_t>(unsignedAt(entries, at + 2, 2)), unsignedAt(entries, at + 4, 4),
                unsignedAt(entries, at + 8, 4), std::uint64_t(directory) + 2 + at + 8});
    }

    /// Where in the file the values lie; nothing when that is not inside the block.
    std::optional<ByteRange> range(const Entry& entry) const;

    /// A value of any numeric type; nothing for other types and for a denominator of 0.
    std::optional<double> number(const Entry& entry, std::uint32_t index = 0) const;

    /// An unsigned integer of 8, 16 or 32 bits.
    std::optional<std::uint32_t> integer(const Entry& entry, std::uint32_t index = 0) const;

    /// The bytes of text, NULs included; at most 64 KiB of it.
    std::string_view rawText(const Entry& entry) const;

    /// Text up to its first NUL, without white space at its end.
    std::string_view text(const Entry& entry) const;

private:
    static constexpr std::size_t entrySize = 12;

    ExifBlock(FileWindow& file, ByteRange block, bool isBigEndian);
    Bytes directoryBytes(std::uint32_t directory) const;
    std::optional<Bytes> valueAt(const Entry& entry, std::uint32_t index) const;
    std::optional<double> real(Bytes bytes) const;
    std::optional<Bytes> view(std::uint64_t offset, std::uint64_t length) const;

    /// An integer of `width` bytes, at most 4, which the caller knows to be inside.
    std::uint32_t unsignedAt(Bytes bytes, std::size_t offset, unsigned width) const
    {
        std::uint32_t value = 0;
        for (unsigned i = 0; i < width; ++i)
            value = value << 8 | bytes[offset + (isBigEndian_ ? i : width - 1 - i)];
        return value;
    }

    FileWindow* file_;
    ByteRange block_;
    bool isBigEndian_;
    std::uint32_t firstDirectory_ = 0;
};

} // namespace korvo
