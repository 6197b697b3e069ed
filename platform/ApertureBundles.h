#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>

namespace korvo {

/// Whether a file's path leads through a folder with the name of an Aperture library. Asks no disk; one that
/// was given another name is found by ApertureBundles.
bool liesInNamedBundle(std::string_view path);

/// Tells which files lie inside Aperture libraries, whose originals are never written. Remembers the folders
/// it has looked at: made anew for each piece of work.
class ApertureBundles {
public:
    /// Of a file by its absolute path, whether it is there or not; also for a link that leads into one.
    bool hold(const std::filesystem::path& file);

private:
    bool isInside(const std::filesystem::path& folder);

    std::unordered_map<std::string, bool> known_;
};

} // namespace korvo
