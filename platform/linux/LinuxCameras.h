#pragma once

#include "platform/CameraService.h"

namespace korvo {

/// Cameras by libgphoto2: those on USB are found, others can be opened by their port.
class LinuxCameras : public CameraService {
public:
    std::vector<ConnectedCamera> connected() override;
    std::unique_ptr<FileSource> open(const ConnectedCamera& camera) override;
};

} // namespace korvo
