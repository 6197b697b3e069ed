#include "app/cli/StandardInput.h"

#include "app/cli/Context.h"
#include "platform/PosixFile.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <functional>
#include <system_error>
#include <utility>

namespace korvo {

namespace {

[[noreturn]] void fail()
{
    throw std::system_error(errno, std::generic_category(), "cannot read standard input");
}

/// A pipe that a stop request writes to, so that whoever waits for input wakes up.
class StopPipe {
public:
    explicit StopPipe(const std::stop_token& stop) : onStop_(stop, [this] { wake(); }) { }

    int readable() const { return ends_.first.descriptor(); }

private:
    static std::pair<PosixFile, PosixFile> open()
    {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0)
            fail();
        return {PosixFile(ends[0]), PosixFile(ends[1])};
    }
    void wake() const { [[maybe_unused]] const auto sent = write(ends_.second.descriptor(), "", 1); }

    std::pair<PosixFile, PosixFile> ends_ = open();
    std::stop_callback<std::function<void()>> onStop_; // behind the ends, so that it goes first
};

/// Waits until there is input, or its end. Throws Interrupted after a stop request.
void waitForInput(const StopPipe& stopped)
{
    std::array<pollfd, 2> sources{{{STDIN_FILENO, POLLIN, 0}, {stopped.readable(), POLLIN, 0}}};
    while (poll(sources.data(), sources.size(), -1) < 0)
        if (errno != EINTR)
            fail();
    if (sources[1].revents != 0)
        throw Interrupted();
}

} // namespace

std::string readStandardInput(const std::stop_token& stop)
{
    const StopPipe stopped(stop);
    std::string text;
    for (std::array<char, 1 << 16> piece{};;) {
        waitForInput(stopped);
        const auto length = read(STDIN_FILENO, piece.data(), piece.size());
        if (length < 0)
            fail();
        if (length == 0)
            return text;
        text.append(piece.data(), static_cast<std::size_t>(length));
    }
}

} // namespace korvo
