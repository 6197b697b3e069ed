#pragma once

#include "base/Bytes.h"

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace korvo {

/// An open file, closed at the end of its life.
class PosixFile {
public:
    PosixFile() = default;
    explicit PosixFile(int descriptor) : descriptor_(descriptor) { }
    PosixFile(PosixFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) { }
    PosixFile& operator=(PosixFile&& other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~PosixFile();

    explicit operator bool() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }

private:
    int descriptor_ = -1;
};

/// Opens a file with the flags of open(2), closed in the processes we start; without one on failure (see
/// errno).
PosixFile openFile(const std::filesystem::path& path, int flags);

/// Whether the file open here is still the one of that name, links not followed.
bool isNamed(const PosixFile& file, const std::filesystem::path& path);

/// Writes all the bytes at the file's position; `path` is for the text of the std::system_error it throws.
void writeAll(const PosixFile& file, const std::filesystem::path& path, Bytes bytes);

/// The bytes of a file. Throws std::system_error.
std::string readWholeFile(const std::filesystem::path& file);

/// Throws the std::system_error that tells the user what could not be done to which file, and why:
/// "Could not write “…/x.part”: No space left on device".
[[noreturn]] void throwFileError(
    std::string_view action, const std::filesystem::path& path, std::error_code reason);
[[noreturn]] void throwFileError(std::string_view action, const std::filesystem::path& path);

} // namespace korvo
