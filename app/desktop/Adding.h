#pragma once

#include <filesystem>
#include <vector>

namespace korvo {

class Desktop;

/// Takes folders and files into the library in the background, and shows what is there as soon as there is
/// something.
void addToLibrary(Desktop& desktop, std::vector<std::filesystem::path> paths);

} // namespace korvo
