#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace korvo {

/// Where the volumes are that referenced masters lie on: what the user says, by the volume's name, and where
/// this system mounts one of that name.
class ApertureVolumes {
public:
    ApertureVolumes() = default;
    explicit ApertureVolumes(std::map<std::string, std::filesystem::path> given)
        : given_(std::move(given)) { }

    /// A file at a path relative to the volume; nothing when no place has it.
    std::optional<std::filesystem::path> find(const std::string& volume, const std::string& path) const;
    /// The same in the place that the user gave alone.
    std::optional<std::filesystem::path> findGiven(const std::string& volume, const std::string& path) const;

private:
    std::map<std::string, std::filesystem::path> given_;
};

} // namespace korvo
