#pragma once

#include "app/view/SidebarTree.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace korvo {

class Desktop;

/// Takes folders and files into the library in the background, and shows what is there as soon as there is
/// something. At the end all of them, those that it had already too, are put where they were dropped, if that
/// is somewhere that takes photos: a step of its own.
void addToLibrary(Desktop& desktop, std::vector<std::filesystem::path> paths,
    const std::optional<SidebarNode>& onto = std::nullopt);

} // namespace korvo
