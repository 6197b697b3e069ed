#include "imports/ImportSource.h"

#include "base/Text.h"
#include "imports/FolderFiles.h"
#include "imports/ImportWindow.h"
#include "imports/VolumeWatcher.h"

namespace korvo {

namespace {

std::unique_ptr<FileSource> openCamera(const std::string& port, CameraService& cameras)
{
    std::string others;
    for (const auto& camera : cameras.connected()) {
        if (port.empty() || camera.port == port)
            return cameras.open(camera);
        others += "\n  camera:" + camera.port + "  " + camera.name;
    }
    throw std::runtime_error(others.empty() ? std::string(importWindow::sections[1].emptyText)
                                            : "no camera at " + port + "; there is" + others);
}

} // namespace

std::vector<Volume> knownVolumes(VolumeService& service)
{
    try {
        return offeredVolumes(service.mounted());
    } catch (const VolumeError&) {
        return {};
    }
}

ImportSource sourceOf(const std::vector<std::filesystem::path>& paths, const std::vector<Volume>& offered)
{
    ImportSource source{.kind = ImportSource::Kind::chosen, .chosen = paths};
    for (const auto& path : paths) {
        auto volume = offered.empty() ? fileSystemHolding(path) : volumeHolding(path, offered);
        if (volume && (volume->isCard || paths.size() == 1)) {
            source.kind = ImportSource::Kind::volume;
            source.volume = std::move(*volume);
        }
    }
    return source;
}

std::unique_ptr<FileSource> openSource(const ImportSource& source, CameraService& cameras)
{
    if (source.kind == ImportSource::Kind::camera)
        return openCamera(source.port, cameras);
    if (source.chosen.empty())
        return std::make_unique<FolderFiles>(std::vector{source.volume.url});
    return std::make_unique<FolderFiles>(source.chosen);
}

std::string nameOf(const ImportSource& source)
{
    switch (source.kind) {
    case ImportSource::Kind::volume:
        return source.volume.name;
    case ImportSource::Kind::camera:
        return "Camera";
    case ImportSource::Kind::chosen:
        break;
    }
    if (source.chosen.size() != 1)
        return counted(source.chosen.size(), "place");
    const auto path = source.chosen.front().lexically_normal();
    return (path.has_filename() ? path : path.parent_path()).filename().string();
}

bool mustCopy(const ImportSource& source)
{
    return source.kind == ImportSource::Kind::camera
        || (source.kind == ImportSource::Kind::volume && source.volume.isCard);
}

} // namespace korvo
