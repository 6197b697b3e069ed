#pragma once

#include "base/Bytes.h"
#include "platform/PosixFile.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace korvo {

/// SHA-256 (FIPS 180-4) of bytes that come piece by piece.
class Sha256 {
public:
    Sha256();

    void add(Bytes bytes);

    /// The digest of all that was added, 64 lower-case hexadecimal digits. Ends the calculation.
    std::string finish();

private:
    struct Free {
        void operator()(void* context) const;
    };
    std::unique_ptr<void, Free> context_;
};

/// The SHA-256 of a file, read 4 MiB at a time; nothing when `stop` was asked for before the end. Throws
/// std::system_error when the file cannot be read.
std::optional<std::string> sha256OfFile(const std::filesystem::path& file, const std::stop_token& stop);

/// The same of a file that is open at its start; `path` is for the text of the error.
std::optional<std::string> sha256OfFile(
    const PosixFile& file, const std::filesystem::path& path, const std::stop_token& stop);

/// Waits until a file is safe on the disk and gives the SHA-256 of what the disk holds, read again past what
/// the system remembers of it, where it can. Nothing when `stop` was asked for. Throws std::system_error.
std::optional<std::string> sha256OnDisk(const std::filesystem::path& file, const std::stop_token& stop);

} // namespace korvo
