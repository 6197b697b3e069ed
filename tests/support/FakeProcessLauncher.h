#pragma once

#include "platform/ProcessLauncher.h"

#include <mutex>

namespace korvo {

/// Starts no program: keeps what it was to run, and answers as the test says. Programs to talk to cannot be
/// started.
class FakeProcessLauncher : public ProcessLauncher {
public:
    using Command = std::vector<std::string>;

    /// Called on whichever thread the program is run on.
    std::function<ProcessOutput(const Command&, const std::stop_token&)> answer
        = [](const Command&, const std::stop_token&) { return ProcessOutput(); };

    ProcessOutput run(const Command& command, std::string_view, const std::stop_token& stop) override
    {
        {
            const std::lock_guard lock(mutex_);
            commands_.push_back(command);
        }
        return answer(command, stop);
    }

    std::unique_ptr<RunningProcess> start(const Command&) override
    {
        throw ProcessError(ProcessError::Case::launch, "no program is started in tests");
    }

    /// The commands so far, each with the program's path first.
    std::vector<Command> commands() const
    {
        const std::lock_guard lock(mutex_);
        return commands_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<Command> commands_;
};

} // namespace korvo
