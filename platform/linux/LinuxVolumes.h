#pragma once

#include "platform/VolumeService.h"

namespace korvo {

/// The volumes by the kernel's table of mounts and by UDisks2, the system's service for disks.
class LinuxVolumes : public VolumeService {
public:
    std::vector<MountedVolume> mounted() override;
    void eject(const std::filesystem::path& root) override;
    Watch watch(std::function<void()> changed) override;
};

} // namespace korvo
