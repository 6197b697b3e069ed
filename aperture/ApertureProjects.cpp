#include "aperture/ApertureLibrary.h"

#include <algorithm>
#include <array>
#include <set>

namespace korvo {

namespace {

constexpr std::int64_t projectType = 2;

/// No user's tree is deeper; a damaged one could be as deep as it has folders.
constexpr std::size_t deepestFolder = 64;

/// Folders that Aperture made for itself. They are no user's projects and never part of a path.
constexpr std::array<std::string_view, 14> systemFolders{"", "Projects", "PublishedProjects",
    "TopLevelAlbums", "AllProjectsItem", "LibraryFolder", "TrashFolder", "TopLevelSlideshows",
    "RKPhotostreamFolder", "TopLevelBooks", "TopLevelKeepsakes", "TopLevelWebProjects", "TopLevelLightTables",
    "Keepsakes"};

struct Folder {
    std::string name;
    std::string parent;
    std::int64_t type = 0;
};
using Folders = std::map<std::string, Folder>;

bool isSystemFolder(std::string_view uuid)
{
    return std::find(systemFolders.begin(), systemFolders.end(), uuid) != systemFolders.end();
}

Folders readFolders(BundleDatabase& library)
{
    Folders folders;
    library.forEach("SELECT uuid, name, parentFolderUuid, folderType FROM RKFolder WHERE isInTrash = 0",
        [&](const BundleRow& row) {
            if (auto uuid = row.text(0); !uuid.empty())
                folders[std::move(uuid)] = {row.text(1), row.text(2), row.integer(3)};
        });
    return folders;
}

/// The names from the top down to this folder; none, as at the top, when it lies too deep.
std::vector<std::string> pathTo(const Folders& folders, std::string uuid)
{
    std::vector<std::string> names;
    std::set<std::string> passed; // a damaged library may lead in a circle
    for (auto folder = folders.find(uuid);
         folder != folders.end() && !isSystemFolder(uuid) && passed.insert(uuid).second;
         folder = folders.find(uuid)) {
        if (names.size() == deepestFolder)
            return {};
        names.push_back(folder->second.name);
        uuid = folder->second.parent;
    }
    std::reverse(names.begin(), names.end());
    return names;
}

} // namespace

std::vector<ApertureLibrary::Project> ApertureLibrary::projects()
{
    const auto folders = readFolders(library_);
    std::vector<Project> projects;
    for (const auto& [uuid, folder] : folders)
        if (folder.type == projectType && !isSystemFolder(uuid))
            projects.push_back({uuid, folder.name, pathTo(folders, folder.parent)});
    std::stable_sort(
        projects.begin(), projects.end(), [](const Project& a, const Project& b) { return a.name < b.name; });
    return projects;
}

std::map<std::string, std::vector<std::string>> ApertureLibrary::folderPaths()
{
    const auto folders = readFolders(library_);
    std::map<std::string, std::vector<std::string>> paths;
    for (const auto& [uuid, folder] : folders)
        if (folder.type != projectType && !isSystemFolder(uuid))
            paths.emplace(uuid, pathTo(folders, uuid));
    return paths;
}

} // namespace korvo
