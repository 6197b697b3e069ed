#pragma once

#include "platform/ImageError.h"
#include "platform/PosixFile.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace korvo {

/// A picture's file, read in pieces: nothing of it is mapped, so that a card that is pulled out is an error
/// and no crash.
class PictureFile {
public:
    /// Throws ImageError (open).
    explicit PictureFile(const std::filesystem::path& path);
    /// A picture that another decoder took out of the file at `path`.
    PictureFile(const std::filesystem::path& path, std::vector<std::uint8_t> contents)
        : path_(path), size_(contents.size()), contents_(std::move(contents))
    { }

    const std::filesystem::path& path() const { return path_; }
    std::uint64_t size() const { return size_; }

    /// Reads up to `length` bytes; fewer at the end of the file only. Throws ImageError (open).
    std::size_t readAt(std::uint64_t offset, std::uint8_t* buffer, std::size_t length) const;

    /// The same for the callbacks of libraries, through which nothing may be thrown: a reading that fails
    /// gives nothing, as do all behind it, and check() says so.
    std::size_t readSafely(std::uint64_t offset, std::uint8_t* buffer, std::size_t length) noexcept;

    /// Throws ImageError (open) when a reading has failed, whatever a library has made of it.
    void check() const;

    /// The bytes of a range, or as many as the file has.
    std::vector<std::uint8_t> bytes(std::uint64_t offset, std::uint64_t length) const;

    [[noreturn]] void fail(ImageError::Case which, const std::string& reason) const
    {
        throw ImageError(which, path_, reason);
    }

private:
    /// Counts the bytes in `done`; the number of the error, or 0.
    int read(
        std::uint64_t offset, std::uint8_t* buffer, std::size_t length, std::size_t& done) const noexcept;

    std::filesystem::path path_;
    PosixFile file_;
    std::uint64_t size_ = 0;
    std::vector<std::uint8_t> contents_;
    int error_ = 0; ///< of the reading that failed
};

} // namespace korvo
