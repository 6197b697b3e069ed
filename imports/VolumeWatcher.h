#pragma once

#include "base/MainThread.h"
#include "base/Signal.h"
#include "base/Task.h"
#include "platform/VolumeService.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace korvo {

/// A volume that is offered for import.
struct Volume {
    std::filesystem::path url; // its root
    std::string name; // as shown
    bool isCard = false; // it has a folder "DCIM" at its top

    friend bool operator==(const Volume&, const Volume&) = default;
};

/// Those of the mounted volumes that are offered: removable, ejectable or not internal, and never the one
/// that holds the system. Looks into them, which may take its time.
std::vector<Volume> offeredVolumes(const std::vector<MountedVolume>& mounted);

/// The volume that a file or folder lies on.
std::optional<Volume> volumeHolding(const std::filesystem::path& path, const std::vector<Volume>& volumes);

/// The same by the file systems alone, for when the system does not tell its volumes: that which the path
/// lies on, unless it is the root file system.
std::optional<Volume> fileSystemHolding(const std::filesystem::path& path);

/// Whether a file or folder, or one that is yet to be made, lies on the file system mounted at `root`.
bool liesOn(const std::filesystem::path& path, const std::filesystem::path& root);

/// The volumes offered for import, kept current as they come and go. Used on the main thread.
class VolumeWatcher {
public:
    /// Both must outlive this. Begins to read the volumes. Throws std::system_error.
    VolumeWatcher(MainThread& main, VolumeService& service);

    const std::vector<Volume>& volumes() const { return volumes_; }
    /// Why the volumes are not known; the list is empty then.
    const std::optional<std::string>& fault() const { return fault_; }
    Signal<> changed;

    /// Reads them again, as when the import window opens.
    void refresh();

private:
    void finished(std::vector<Volume> volumes, std::optional<std::string> fault);

    MainThread& main_;
    VolumeService& service_;
    std::vector<Volume> volumes_;
    std::optional<std::string> fault_;
    bool reading_ = false;
    bool readAgain_ = false;
    std::shared_ptr<VolumeWatcher*> self_; // for calls from the watch that arrive when this is gone
    Task reader_;
    VolumeService::Watch watch_;
};

} // namespace korvo
