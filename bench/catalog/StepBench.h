#pragma once

#include <cstddef>
#include <filesystem>

namespace korvo::bench {

/// How long actions on so many photos of a library, their undo and redo hold the main thread.
void reportSteps(const std::filesystem::path& library, std::size_t photos);

} // namespace korvo::bench
