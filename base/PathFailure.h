#pragma once

#include <filesystem>
#include <string>

namespace korvo {

/// A file or folder that was left out of what was done, or done only in part, and why.
struct PathFailure {
    std::filesystem::path path;
    std::string reason; ///< does not name it
};

/// "/photos/a.jpg: Permission denied".
inline std::string sentenceOf(const PathFailure& failure)
{
    return failure.path.string() + ": " + failure.reason;
}

} // namespace korvo
