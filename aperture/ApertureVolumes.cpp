#include "aperture/ApertureVolumes.h"

#include "aperture/BundlePaths.h"

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

/// A path as it is on the volume itself.
std::string_view onVolume(const std::string& volume, std::string_view path)
{
    const auto mounted = "/Volumes/" + volume + "/";
    return path.starts_with(mounted) ? path.substr(mounted.size()) : path;
}

} // namespace

ApertureVolumes::ApertureVolumes(std::map<std::string, fs::path> given)
    : given_(std::move(given)), mountFolders_(mountFolders())
{ }

std::optional<fs::path> ApertureVolumes::findGiven(const std::string& volume, const std::string& path) const
{
    const auto given = given_.find(volume);
    return given == given_.end() ? std::nullopt : existingFileIn(given->second, onVolume(volume, path));
}

std::optional<fs::path> ApertureVolumes::find(const std::string& volume, const std::string& path) const
{
    if (const auto file = findGiven(volume, path))
        return file;
    if (!isPlainName(volume))
        return std::nullopt;
    for (const auto& folder : mountFolders_)
        if (const auto file = existingFileIn(folder / volume, onVolume(volume, path)))
            return file;
    return std::nullopt;
}

} // namespace korvo
