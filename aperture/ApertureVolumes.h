#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korvo {

/// Where the volumes are that referenced masters lie on: what the user says, by the volume's name, and where
/// this system mounts one of that name.
class ApertureVolumes {
public:
    /// Looks for what is mounted now.
    explicit ApertureVolumes(std::map<std::string, std::filesystem::path> given);
    ApertureVolumes() : ApertureVolumes(std::map<std::string, std::filesystem::path>()) { }

    /// A file at a path on the volume, which may begin with "/" or with "/Volumes/" and its name; nothing
    /// when no place has it.
    std::optional<std::filesystem::path> find(const std::string& volume, const std::string& path) const;
    /// The same in the place that the user gave alone.
    std::optional<std::filesystem::path> findGiven(const std::string& volume, const std::string& path) const;

private:
    std::map<std::string, std::filesystem::path> given_;
    std::vector<std::filesystem::path> mountFolders_; ///< in which volumes are mounted by their names
};

} // namespace korvo
