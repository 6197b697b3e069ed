#pragma once

#include "metadata/ExifTool.h"
#include "platform/AppFolders.h"

#include <cstdlib>

namespace korvo {

/// The tool that changes files, as the system has it.
struct SystemExifTool {
    std::unique_ptr<ProcessLauncher> launcher = systemProcessLauncher();
    ExifTool tool{*launcher, places()};

    static ExifToolPlaces places()
    {
        const char* const path = std::getenv("PATH");
        return {.bundled = resourceFolder() / "exiftool", .searchPath = path ? path : ""};
    }
};

} // namespace korvo
