#include "aperture/ApertureVolumes.h"

#include "aperture/BundlePaths.h"

#include <vector>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// The folders in which each user's volumes are mounted.
std::vector<fs::path> mountFolders()
{
    std::vector<fs::path> folders{"/Volumes", "/mnt"};
    for (const char* const parent : {"/media", "/run/media"}) {
        std::error_code unreadable; // then nothing of ours is mounted there
        for (fs::directory_iterator user(parent, unreadable), end; !unreadable && user != end;
             user.increment(unreadable))
            folders.push_back(user->path());
    }
    return folders;
}

} // namespace

std::optional<fs::path> ApertureVolumes::findGiven(const std::string& volume, const std::string& path) const
{
    const auto given = given_.find(volume);
    return given == given_.end() ? std::nullopt : existingFileIn(given->second, path);
}

std::optional<fs::path> ApertureVolumes::find(const std::string& volume, const std::string& path) const
{
    if (const auto file = findGiven(volume, path))
        return file;
    if (!isPlainName(volume))
        return std::nullopt;
    static const auto folders = mountFolders();
    for (const auto& folder : folders)
        if (const auto file = existingFileIn(folder / volume, path))
            return file;
    return std::nullopt;
}

} // namespace korvo
