#include "imports/VolumeWatcher.h"

#include <sys/stat.h>

#include <algorithm>

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

std::optional<dev_t> deviceOf(const std::filesystem::path& path)
{
    struct stat status { };
    return stat(path.c_str(), &status) == 0 ? std::optional(status.st_dev) : std::nullopt;
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

std::optional<Volume> volumeHolding(const std::filesystem::path& path, const std::vector<Volume>& volumes)
{
    std::error_code unknown; // a path that is not there is reported when it is listed
    const auto file = std::filesystem::weakly_canonical(path, unknown);
    std::optional<Volume> innermost;
    for (const auto& volume : volumes) {
        const auto [end, rest]
            = std::mismatch(volume.url.begin(), volume.url.end(), file.begin(), file.end());
        if (end == volume.url.end()
            && (!innermost || innermost->url.native().size() < volume.url.native().size()))
            innermost = volume;
    }
    return innermost;
}

std::optional<Volume> fileSystemHolding(const std::filesystem::path& path)
{
    std::error_code unknown; // likewise
    auto root = std::filesystem::weakly_canonical(path, unknown);
    const auto device = deviceOf(root);
    if (!device || device == deviceOf("/"))
        return std::nullopt;
    while (deviceOf(root.parent_path()) == device)
        root = root.parent_path();
    return offered({.root = root});
}

bool liesOn(const std::filesystem::path& path, const std::filesystem::path& root)
{
    auto there = std::filesystem::absolute(path);
    while (!deviceOf(there) && there != there.parent_path())
        there = there.parent_path();
    return deviceOf(there) && deviceOf(there) == deviceOf(root);
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
