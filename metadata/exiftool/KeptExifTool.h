#pragma once

#include "metadata/exiftool/ExifTool.h"

#include <memory>

namespace korvo {

/// One exiftool process that carries out one call after the other, which saves its long start. What cannot
/// go that way, and everything once the process has died, goes through processes of their own, with the same
/// results. Used on one thread.
class KeptExifTool {
public:
    /// The tool must outlive this.
    explicit KeptExifTool(const ExifTool& tool) : tool_(tool) { }

    /// As ExifTool::run. A call during which the process dies is made again: give only such as may be.
    std::string run(const ExifToolArguments& arguments, const std::stop_token& stop);

private:
    std::optional<ProcessOutput> ask(const std::string& lines, const std::stop_token& stop);

    const ExifTool& tool_;
    std::unique_ptr<RunningProcess> process_;
    bool died_ = false;
    int calls_ = 0;
};

} // namespace korvo
