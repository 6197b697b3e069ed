#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace korvo {

/// Every name in a folder with its time and, of files, the digest of its bytes.
std::map<std::filesystem::path, std::string> bundleState(const std::filesystem::path& folder);

} // namespace korvo
