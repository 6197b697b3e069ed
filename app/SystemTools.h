#pragma once

#include "metadata/exiftool/ExifTool.h"
#include "platform/AppFolders.h"
#include "platform/linux/images/SystemImageReader.h"

#include <cstdlib>

namespace korvo {

/// What the system has for reading pictures and for changing files.
struct SystemTools {
    std::unique_ptr<ProcessLauncher> launcher = systemProcessLauncher();
    ExifTool exifTool{*launcher, exifToolPlaces()};
    SystemImageReader reader{*launcher, SystemImageReader::installedDecoder()};

    static ExifToolPlaces exifToolPlaces()
    {
        const char* const path = std::getenv("PATH");
        return {.bundled = shareFolder() / "korvo/exiftool", .searchPath = path ? path : ""};
    }
};

} // namespace korvo
