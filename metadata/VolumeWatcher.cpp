#include "metadata/VolumeWatcher.h"

namespace korvo {

namespace {

bool isOffered(const MountedVolume& volume)
{
    return !volume.holdsSystem && (volume.removable || volume.ejectable || !volume.internal);
}

Volume offered(const MountedVolume& volume)
{
    std::error_code ignored; // a volume that cannot be looked into is no card
    return {volume.root, volume.name.empty() ? volume.root.filename().string() : volume.name,
        std::filesystem::is_directory(volume.root / "DCIM", ignored)};
}

} // namespace

std::vector<Volume> offeredVolumes(const std::vector<MountedVolume>& mounted)
{
    std::vector<Volume> volumes;
    for (const auto& volume : mounted)
        if (isOffered(volume))
            volumes.push_back(offered(volume));
    return volumes;
}

VolumeWatcher::VolumeWatcher(MainThread& main, VolumeService& service)
    : main_(main), service_(service), self_(std::make_shared<VolumeWatcher*>(this))
{
    watch_ = service_.watch([&thread = main_, self = std::weak_ptr(self_)] {
        thread.post([self] {
            if (const auto watcher = self.lock())
                (*watcher)->refresh();
        });
    });
    refresh();
}

void VolumeWatcher::refresh()
{
    main_.assertCurrent();
    readAgain_ = reading_;
    if (reading_)
        return;
    reading_ = true;
    reader_ = runInBackground(main_, [this, &service = service_](const Task::Context& context) {
        std::vector<Volume> found;
        std::optional<std::string> fault;
        try {
            found = offeredVolumes(service.mounted());
        } catch (const std::exception& error) {
            fault = error.what();
        }
        context.deliver([this, found, fault] { finished(found, fault); });
    });
}

void VolumeWatcher::finished(std::vector<Volume> volumes, std::optional<std::string> fault)
{
    reading_ = false;
    if (volumes != volumes_ || fault != fault_) {
        volumes_ = std::move(volumes);
        fault_ = std::move(fault);
        changed.emit();
    }
    if (readAgain_)
        refresh();
}

} // namespace korvo
