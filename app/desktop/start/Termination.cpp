#include "app/desktop/start/Termination.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace korvo {

namespace {

/// The end of a pipe that a signal writes to: hardly anything else may be done while one is handled.
int signalled = -1;

constexpr std::array endingSignals{SIGTERM, SIGINT, SIGHUP};

void tell(int /*signal*/)
{
    const int before = errno;
    struct sigaction now { };
    for (const int next : endingSignals) // the second one is not waited for
        if (sigaction(next, nullptr, &now) == 0 && now.sa_handler == tell)
            std::signal(next, SIG_DFL);
    [[maybe_unused]] const auto written = write(signalled, "", 1);
    errno = before;
}

} // namespace

void onTermination(QObject& context, std::function<void()> end)
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        throw std::system_error(errno, std::generic_category(), "no pipe for signals");
    for (const int one : ends)
        fcntl(one, F_SETFD, FD_CLOEXEC);
    signalled = ends[1];
    auto* const notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read, &context);
    QObject::connect(notifier, &QSocketNotifier::activated, &context, [notifier, end = std::move(end)] {
        notifier->setEnabled(false);
        end();
    });
    struct sigaction action { };
    action.sa_handler = tell;
    action.sa_flags = SA_RESTART;
    struct sigaction before { };
    for (const int signal : endingSignals)
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) // nohup stays that
            sigaction(signal, &action, nullptr);
}

} // namespace korvo
