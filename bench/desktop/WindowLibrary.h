#pragma once

#include <filesystem>
#include <vector>

namespace korvo::bench {

/// Makes a library of so many photos with an album, stacks and a smart album. Behind every photo is one of
/// the pictures, through a link.
void makeWindowLibrary(
    const std::filesystem::path& folder, const std::vector<std::filesystem::path>& pictures, int photos);

} // namespace korvo::bench
