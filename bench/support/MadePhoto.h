#pragma once

#include <filesystem>

namespace korvo::bench {

/// Writes a JPEG of waves and noise, another for each number, and returns its path.
std::filesystem::path madePhoto(const std::filesystem::path& file, int width, int height, int number);

} // namespace korvo::bench
