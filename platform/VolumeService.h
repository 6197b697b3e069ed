#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace korvo {

/// A mounted file system of a disk, a card or a server, as the system describes it.
struct MountedVolume {
    std::filesystem::path root; // where it is mounted
    std::string name; // its label; empty when it has none
    bool removable = false;
    bool ejectable = false;
    bool internal = false; // on a disk that is built into the machine
    bool holdsSystem = false; // the root file system

    friend bool operator==(const MountedVolume&, const MountedVolume&) = default;
};

/// The system's service for volumes does not answer, or refuses.
class VolumeError : public std::runtime_error {
public:
    enum class Case { unavailable, eject };

    VolumeError(Case which, const std::string& text) : std::runtime_error(text), which_(which) { }

    Case which() const { return which_; }

private:
    Case which_;
};

/// The volumes of the machine. Calls may come from any thread and may take seconds.
class VolumeService {
public:
    /// Ends with its last copy.
    using Watch = std::shared_ptr<void>;

    virtual ~VolumeService() = default;

    /// What is mounted now. Throws VolumeError (unavailable).
    virtual std::vector<MountedVolume> mounted() = 0;

    /// Writes out what is not written yet, unmounts the volume and lets its medium go. Throws VolumeError.
    virtual void eject(const std::filesystem::path& root) = 0;

    /// Calls `changed`, on a thread of its own, after each mount and unmount. Throws std::system_error.
    [[nodiscard]] virtual Watch watch(std::function<void()> changed) = 0;
};

} // namespace korvo
