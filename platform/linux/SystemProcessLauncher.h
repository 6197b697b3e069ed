#pragma once

#include "platform/ProcessLauncher.h"

namespace korvo {

/// Starts programs as child processes, each at the head of a process group of its own, so that all that it
/// starts can be ended with it. When the thread that started a program ends, however it ends, the program is
/// interrupted: none outlives us.
class SystemProcessLauncher : public ProcessLauncher {
public:
    ProcessOutput run(const std::vector<std::string>& command, std::string_view input,
        const std::stop_token& stop) override;
    std::unique_ptr<RunningProcess> start(const std::vector<std::string>& command) override;
};

} // namespace korvo
