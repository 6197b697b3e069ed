#pragma once

#include "metadata/exiftool/ExifTool.h"
#include "platform/ProcessLauncher.h"
#include "tests/support/TemporaryFolder.h"

#include <memory>
#include <string>

namespace korvo {

/// An exiftool for tests: a shell script in its place, the real one, or none.
struct FakeTool {
    struct Real { };

    FakeTool() : tool(*launcher, {folder / "none", {}, ""}) { }
    explicit FakeTool(Real) : tool(*launcher, {}) { }
    explicit FakeTool(const std::string& script)
        : tool(*launcher, {folder.write("exiftool", "#!/bin/sh\n" + script), {}, ""})
    {
        std::filesystem::permissions(folder / "exiftool", std::filesystem::perms::owner_all);
    }

    TemporaryFolder folder;
    std::unique_ptr<ProcessLauncher> launcher = systemProcessLauncher();
    ExifTool tool;
};

} // namespace korvo
