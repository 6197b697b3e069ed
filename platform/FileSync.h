#pragma once

#include <filesystem>
#include <string_view>

namespace korvo {

/// Makes `from`, a finished file on the same file system, the file `to`, replacing what is there: after a
/// crash or a power cut either the old file stands or the whole new one. Throws std::system_error.
void moveIntoPlace(const std::filesystem::path& from, const std::filesystem::path& to);

/// Replaces the contents of a file in the same all-or-nothing way, making the folders above it.
/// Throws std::system_error.
void replaceFile(const std::filesystem::path& file, std::string_view contents);

} // namespace korvo
