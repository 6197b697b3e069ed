#include "platform/linux/SystemProcessLauncher.h"

#include "platform/linux/ChildProcess.h"
#include "platform/linux/PipeSignalBlock.h"
#include "platform/linux/StopEvent.h"

#include <array>
#include <poll.h>
#include <unistd.h>

namespace korvo {

namespace {

using Case = ProcessError::Case;

constexpr std::size_t longestOutput = 256 << 20;

constexpr auto neverWhole = [](const ProcessOutput&) { return false; };

/// Writes what the pipe takes at once. A reader that has gone takes everything.
void send(std::string_view& input, const PosixFile& pipe)
{
    const auto sent = write(pipe.descriptor(), input.data(), input.size());
    if (sent >= 0)
        input.remove_prefix(static_cast<std::size_t>(sent));
    else if (errno != EAGAIN && errno != EINTR)
        input = {};
}

/// Reads what is there, and closes our end once there can be no more.
void receive(PosixFile& pipe, std::string& text)
{
    std::array<char, 65536> piece;
    const auto length = read(pipe.descriptor(), piece.data(), piece.size());
    if (length > 0)
        text.append(piece.data(), static_cast<std::size_t>(length));
    else if (length == 0 || (errno != EAGAIN && errno != EINTR))
        pipe = PosixFile();
}

[[noreturn]] void throwStopped()
{
    throw ProcessError(Case::stopped, "The program was stopped.");
}

enum class AfterInput { keepOpen, close };

/// Sends input and gathers both outputs, whichever comes, so that neither side ever waits for the other.
/// Returns whether the answer became whole before both outputs ended.
bool converse(ChildProcess& child, std::string_view input, AfterInput afterInput, ProcessOutput& output,
    const RunningProcess::IsWhole& isWhole, const std::stop_token& stop)
{
    const PipeSignalBlock noPipeSignal;
    const StopEvent stopEvent(stop);
    while (child.out || child.err) {
        if (input.empty() && afterInput == AfterInput::close)
            child.in = PosixFile();
        const int in = input.empty() ? -1 : child.in.descriptor(); // poll passes over -1
        std::array<pollfd, 4> waits{{{in, POLLOUT, 0}, {child.out.descriptor(), POLLIN, 0},
            {child.err.descriptor(), POLLIN, 0}, {stopEvent.descriptor(), POLLIN, 0}}};
        if (poll(waits.data(), waits.size(), -1) < 0)
            continue; // a signal
        if (waits[3].revents)
            throwStopped();
        if (waits[0].revents)
            send(input, child.in);
        if (waits[1].revents)
            receive(child.out, output.out);
        if (waits[2].revents)
            receive(child.err, output.err);
        if (output.out.size() + output.err.size() > longestOutput)
            throw ProcessError(Case::ended, "The program writes without end.");
        if (isWhole(output))
            return true;
    }
    return false;
}

/// A program may close its outputs and run on.
int statusAtEnd(ChildProcess& child, const std::stop_token& stop)
{
    const StopEvent stopEvent(stop);
    std::array<pollfd, 2> waits{{{child.ended.descriptor(), POLLIN, 0}, {stopEvent.descriptor(), POLLIN, 0}}};
    while (child.ended && !waits[0].revents)
        if (poll(waits.data(), waits.size(), -1) > 0 && waits[1].revents)
            throwStopped();
    return child.wait();
}

class SystemProcess : public RunningProcess {
public:
    explicit SystemProcess(const std::vector<std::string>& command) : child_(command) { }

    ProcessOutput ask(std::string_view input, const IsWhole& isWhole, const std::stop_token& stop) override
    {
        ProcessOutput output;
        if (!converse(child_, input, AfterInput::keepOpen, output, isWhole, stop))
            throw ProcessError(Case::ended, "The program ended.");
        return output;
    }

private:
    ChildProcess child_;
};

} // namespace

ProcessOutput SystemProcessLauncher::run(
    const std::vector<std::string>& command, std::string_view input, const std::stop_token& stop)
{
    ChildProcess child(command);
    ProcessOutput output;
    converse(child, input, AfterInput::close, output, neverWhole, stop);
    output.status = statusAtEnd(child, stop);
    return output;
}

std::unique_ptr<RunningProcess> SystemProcessLauncher::start(const std::vector<std::string>& command)
{
    return std::make_unique<SystemProcess>(command);
}

std::unique_ptr<ProcessLauncher> systemProcessLauncher()
{
    return std::make_unique<SystemProcessLauncher>();
}

} // namespace korvo
