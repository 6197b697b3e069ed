#pragma once

#include "platform/PosixFile.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace korvo {

/// A child process with a pipe to each of its standard streams. Our ends of them never block. It is
/// interrupted when the thread that made it ends; destroying it, while it runs, ends it with its whole group.
class ChildProcess {
public:
    /// Throws ProcessError (launch).
    explicit ChildProcess(const std::vector<std::string>& command);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for its end. Returns the exit status, or 128 and the signal's number.
    int wait();

    /// Interrupts the group, which lets programs tidy up, and after a short while kills it.
    void end();

    PosixFile in; // what it reads
    PosixFile out;
    PosixFile err;
    PosixFile ended; // becomes readable with its end; not there where the system cannot tell

private:
    std::optional<int> statusIfEnded();

    pid_t id_ = -1;
    std::optional<int> status_;
};

} // namespace korvo
