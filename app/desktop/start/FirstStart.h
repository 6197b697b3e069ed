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

/// Asks what to do without the library that was opened last, whose disk may be away: wait for it, or take
/// another. Nothing when the user wants neither.
std::optional<FirstStart> askForMissing(const std::filesystem::path& library);

} // namespace korvo
