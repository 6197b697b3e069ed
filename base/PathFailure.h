#pragma once

#include <filesystem>
#include <string>

namespace korvo {

/// A file that was left out of what was done, or done only in part.
struct PathFailure {
    std::filesystem::path path;
    std::string message; ///< a sentence that names the file
};

} // namespace korvo
