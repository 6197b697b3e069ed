#include "app/cli/StandardInput.h"

#include "app/cli/Context.h"
#include "platform/linux/StopEvent.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace korvo {

namespace {

[[noreturn]] void fail()
{
    throw std::system_error(errno, std::generic_category(), "cannot read standard input");
}

/// Waits until there is input, or its end. Throws Interrupted after a stop request.
void waitForInput(const StopEvent& stopped)
{
    std::array<pollfd, 2> sources{{{STDIN_FILENO, POLLIN, 0}, {stopped.descriptor(), POLLIN, 0}}};
    while (poll(sources.data(), sources.size(), -1) < 0)
        if (errno != EINTR)
            fail();
    if (sources[1].revents != 0)
        throw Interrupted();
}

} // namespace

std::string readStandardInput(const std::stop_token& stop)
{
    const StopEvent stopped(stop);
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
