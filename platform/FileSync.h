#pragma once

#include <filesystem>

namespace korvo {

/// Renames `from` to a name of the same file system that nothing has; false when something has. File systems
/// that cannot rename so (NFS, some of FUSE) are asked first, which another program may spoil in that very
/// moment. What is renamed is safe from a power cut after syncFolder(). Throws std::system_error.
bool moveToFreeName(const std::filesystem::path& from, const std::filesystem::path& to);

/// Makes a folder and those above it, each safe from a power cut. Throws std::system_error.
void makeFolders(const std::filesystem::path& folder);

/// Waits until what was written to a file is safe on the disk. Throws std::system_error.
void syncFile(const std::filesystem::path& file);

/// Waits until the names in a folder are safe on the disk, where folders cannot be waited for until its whole
/// file system is. Throws std::system_error.
void syncFolder(const std::filesystem::path& folder);

} // namespace korvo
