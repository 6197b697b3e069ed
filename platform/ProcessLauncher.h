#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// What a process has written, and how it ended.
struct ProcessOutput {
    std::string out;
    std::string err;
    int status = 0; // the exit status, or 128 and the number of the signal that ended it
};

/// A process that cannot be started or talked to.
class ProcessError : public std::runtime_error {
public:
    enum class Case { launch, ended, stopped };

    ProcessError(Case which, const std::string& text) : std::runtime_error(text), which_(which) { }

    Case which() const { return which_; }

private:
    Case which_;
};

/// A running process that takes input and answers. The process ends with the thread that started it at the
/// latest, so it is used on that one; only the decoder, which goes by the end of its input instead, may be
/// used on others. Destroying it ends the process and all that it started.
class RunningProcess {
public:
    /// Whether an answer is whole.
    using IsWhole = std::function<bool(const ProcessOutput&)>;

    virtual ~RunningProcess() = default;

    /// Sends input and gathers what the process writes, of any size, until the answer is whole. Throws
    /// ProcessError: `ended` when the process ends before, `stopped` after a stop request; it is of no
    /// further use then.
    virtual ProcessOutput ask(std::string_view input, const IsWhole& isWhole, const std::stop_token& stop)
        = 0;
};

/// Starts other programs, without a shell: arguments need no quoting.
class ProcessLauncher {
public:
    virtual ~ProcessLauncher() = default;

    /// Runs a program to its end. `command` begins with the program's path. A stop request ends the program
    /// and all that it started. Throws ProcessError (launch, stopped).
    virtual ProcessOutput run(
        const std::vector<std::string>& command, std::string_view input, const std::stop_token& stop)
        = 0;

    /// Starts a program to talk to. Throws ProcessError (launch).
    virtual std::unique_ptr<RunningProcess> start(const std::vector<std::string>& command) = 0;
};

/// The system's own launcher.
std::unique_ptr<ProcessLauncher> systemProcessLauncher();

} // namespace korvo
