#pragma once

#include <filesystem>

namespace korvo {

/// Opens a library in a window of its own, which is a program of its own. Throws std::runtime_error.
void openInNewWindow(const std::filesystem::path& library);

} // namespace korvo
