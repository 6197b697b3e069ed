#pragma once

#include "base/Bytes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace korvo {

/// A range of bytes of a file.
struct ByteRange {
    std::uint64_t offset = 0, length = 0;

    /// Without its first `count` bytes; empty when it has no more.
    ByteRange from(std::uint64_t count) const
    {
        const auto dropped = std::min(count, length);
        return {offset + dropped, length - dropped};
    }

    /// Its first `count` bytes, or all when it has no more.
    ByteRange first(std::uint64_t count) const { return {offset, std::min(count, length)}; }
};

/// The few bytes of one file that its metadata are read from. The first 16 KiB are read at once, which is all
/// that most photos need; ranges beyond are read when asked for, in total at most twice the file's size and 4
/// MiB. Bytes given out stay valid as long as the window.
class FileWindow {
public:
    static constexpr std::size_t headSize = 16 * 1024;

    /// Opens the file and reads its head. The path must outlive the window. Throws MetadataError.
    explicit FileWindow(const std::filesystem::path& file);
    FileWindow(const FileWindow&) = delete;
    FileWindow& operator=(const FileWindow&) = delete;

    /// The bytes at the beginning of the file, `headSize` of them or the whole file.
    Bytes head() const { return head_; }
    std::uint64_t size() const { return size_; }
    ByteRange all() const { return {0, size_}; }

    /// The bytes of a range; nothing when they do not all lie in the file or too much has been read of it
    /// already. Throws MetadataError when reading fails.
    std::optional<Bytes> view(std::uint64_t offset, std::uint64_t length)
    {
        const auto inHead = head_.slice(offset, length);
        return inHead ? inHead : viewBeyondHead(offset, length);
    }
    std::optional<Bytes> view(ByteRange range) { return view(range.offset, range.length); }

    /// The first `count` bytes of a range; nothing when it has fewer.
    std::optional<Bytes> start(ByteRange range, std::uint64_t count)
    {
        return count > range.length ? std::nullopt : view(range.offset, count);
    }

    /// How many bytes may still be appended: a small multiple of what the file has.
    std::uint64_t roomToAppend() const { return roomToAppend_; }

    /// Adds bytes that were unpacked from the file, so that they have a range as well; nothing without room
    /// for them.
    std::optional<ByteRange> append(std::vector<std::uint8_t> bytes);

    /// Adds text that was put together from the file; empty without room for it.
    std::string_view keep(std::string_view text);

    /// The ranges one after the other as one; nothing when one of them cannot be viewed or there is no room.
    std::optional<ByteRange> joined(const std::vector<ByteRange>& ranges);

private:
    struct Descriptor {
        explicit Descriptor(const std::filesystem::path& file);
        ~Descriptor();
        Descriptor(const Descriptor&) = delete;
        Descriptor& operator=(const Descriptor&) = delete;

        int number;
    };

    struct Piece {
        std::uint64_t offset;
        std::vector<std::uint8_t> bytes;
    };

    std::optional<Bytes> viewBeyondHead(std::uint64_t offset, std::uint64_t length);
    static std::optional<Bytes> viewInPiece(const Piece& piece, std::uint64_t offset, std::uint64_t length);
    bool readPiece(std::uint64_t offset, std::uint64_t length);
    std::size_t readAt(std::uint64_t offset, std::uint8_t* buffer, std::size_t length) const;

    const std::filesystem::path& path_;
    Descriptor file_;
    std::array<std::uint8_t, headSize> headBytes_;
    Bytes head_;
    std::uint64_t size_ = 0;
    std::uint64_t roomToRead_ = 0, roomToAppend_ = 0;
    std::vector<Piece> pieces_; ///< read beyond the head
    std::vector<Piece> appended_;
};

} // namespace korvo
