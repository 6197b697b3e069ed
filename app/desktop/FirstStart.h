#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace korvo {

/// The library to open, made when it is not there, and what to add to it.
struct FirstStart {
    std::filesystem::path library;
    std::vector<std::filesystem::path> add;
};

/// Asks for one folder of photos, or for a library that is there. Nothing when the user wants neither.
std::optional<FirstStart> askAtFirstStart();

} // namespace korvo
