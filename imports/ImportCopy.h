#pragma once

#include "platform/FileSource.h"
#include "platform/FileStream.h"
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
    FileStream stream; // what it is written by
    std::uint64_t size = 0;
    std::string digest; // the SHA-256 of what the source gave
};

/// Copies a file into a folder; the last of it may still be on its way to the disk. Nothing after a stop
/// request. Throws SourceError when the source does not give the file as it was listed, and std::system_error
/// when it cannot be written.
std::optional<FileCopy> copyInto(const std::filesystem::path& folder, FileSource& source,
    const SourceFile& file, const std::stop_token& stop);

/// Ends the writing of a copy and gives it a time; false when its file system, as some do with files of
/// others, refuses that. Throws std::system_error.
bool finish(FileCopy& copy, const std::optional<std::filesystem::file_time_type>& modified);

/// Waits until a finished copy is safe on the disk, reads it again and compares size and SHA-256; false after
/// a stop request. Throws std::system_error, and SourceError when it differs. May be called for several
/// copies at once.
bool verify(const FileCopy& copy, const std::stop_token& stop);

/// Removes the copies that a killed import left half-written in a folder.
void removeHalfWritten(const std::filesystem::path& folder);

} // namespace korvo
