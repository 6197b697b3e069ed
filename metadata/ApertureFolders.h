#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>

namespace korvo {

/// Tells which files lie inside Aperture libraries, whose originals are never written. Remembers the folders
/// it has looked at: made anew for each piece of work.
class ApertureFolders {
public:
    /// Also for a link that leads into one.
    bool hold(const std::filesystem::path& file);

private:
    bool isInside(const std::filesystem::path& folder);

    std::unordered_map<std::string, bool> known_;
};

} // namespace korvo
