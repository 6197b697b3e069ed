#include "app/cli/Interrupt.h"

#include <csignal>
#include <cstdlib>

namespace korvo {

namespace {

sigset_t interrupts()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

} // namespace

Interrupt::Interrupt()
{
    std::signal(SIGCHLD, SIG_DFL); // where it is ignored, which is inherited, programs end without a status
    const sigset_t set = interrupts();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    waiter_ = std::jthread([this, set](const std::stop_token& ended) {
        for (int signal = 0; sigwait(&set, &signal) == 0 && !ended.stop_requested();) {
            if (source_.stop_requested())
                std::_Exit(130);
            source_.request_stop();
        }
    });
}

Interrupt::~Interrupt()
{
    waiter_.request_stop();
    pthread_kill(waiter_.native_handle(), SIGINT);
}

} // namespace korvo
