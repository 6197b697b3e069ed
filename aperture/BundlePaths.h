#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

/// Whether a text from a bundle is the name of one entry of a folder, and not a way out of it.
bool isPlainName(std::string_view name);

/// A path from a bundle, with or without a leading separator, inside `folder`; nothing for one that leads out
/// of it.
std::optional<std::filesystem::path> pathIn(const std::filesystem::path& folder, std::string_view path);

/// The same when a file is there.
std::optional<std::filesystem::path> existingFileIn(
    const std::filesystem::path& folder, std::string_view path);

bool isFile(const std::filesystem::path& path);

} // namespace korvo
