#pragma once

#include "imports/VolumeWatcher.h"
#include "platform/CameraService.h"
#include "platform/VolumeService.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace korvo {

/// What the user chose to import from.
struct ImportSource {
    enum class Kind { volume, camera, chosen };

    Kind kind = Kind::chosen;
    Volume volume; // of the kind volume
    std::string port; // of the kind camera: where it is connected
    std::vector<std::filesystem::path> chosen; // files and folders
};

/// The source's name in the progress: the volume's, "Camera", or the chosen folder's or file's.
std::string nameOf(const ImportSource& source);

/// Whether the files of a source must be copied: a card goes back into the camera.
bool mustCopy(const ImportSource& source);

/// The volumes that are offered; none when the system does not tell, since a path can be imported all the
/// same.
std::vector<Volume> knownVolumes(VolumeService& service);

/// What files and folders are as a source: the volume they lie on when it is a card, or when they are one
/// path on a volume that is offered; else themselves.
ImportSource sourceOf(const std::vector<std::filesystem::path>& paths, const std::vector<Volume>& offered);

/// Opens a source; of a camera without a port the first that is there. Throws SourceError, and
/// std::runtime_error for a camera that is not there.
std::unique_ptr<FileSource> openSource(const ImportSource& source, CameraService& cameras);

} // namespace korvo
