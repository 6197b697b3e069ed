#pragma once

#include "platform/FileSource.h"

#include <memory>
#include <string>
#include <vector>

namespace korvo {

/// A camera that is connected and switched on.
struct ConnectedCamera {
    std::string name; // "Canon EOS R5"
    std::string port; // "usb:001,004"
};

/// The cameras of the machine. Calls may come from any thread and may take seconds.
class CameraService {
public:
    virtual ~CameraService() = default;

    /// The cameras that are there now. Throws SourceError.
    virtual std::vector<ConnectedCamera> connected() = 0;

    /// Opens a camera, which nobody else can use then. Throws SourceError.
    virtual std::unique_ptr<FileSource> open(const ConnectedCamera& camera) = 0;
};

} // namespace korvo
