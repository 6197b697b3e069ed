#pragma once

#include "platform/FileSource.h"
#include "platform/PartFile.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>

namespace korvo {

/// A file copied into the folder where it is to stand, under a hidden name until it is known to be whole.
/// Goes unless it is moved to its own name.
struct FileCopy {
    PartFile part;
    std::uint64_t size = 0;
    std::string digest; // the SHA-256 of what the source gave
    bool hasTime = true; // that of its source; some file systems give files of others none
};

/// Copies a file, with its time where that can be set, into a folder; nothing after a stop request. Throws
/// SourceError when the source does not give the file as it was listed, and std::system_error when it cannot
/// be written.
std::optional<FileCopy> copyInto(const std::filesystem::path& folder, FileSource& source,
    const SourceFile& file, const std::stop_token& stop);

/// Waits until a copy is safe on the disk, reads it again and compares size and SHA-256; false after a stop
/// request. Throws std::system_error, and SourceError when it differs. May be called for several copies at
/// once.
bool verify(const FileCopy& copy, const std::stop_token& stop);

/// Removes the copies that a killed import left half-written in a folder. Throws
/// std::filesystem::filesystem_error.
void removeHalfWritten(const std::filesystem::path& folder);

} // namespace korvo
