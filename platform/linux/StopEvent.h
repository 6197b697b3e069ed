#pragma once

#include "platform/PosixFile.h"

#include <sys/eventfd.h>

#include <functional>
#include <stop_token>
#include <system_error>

namespace korvo {

/// A descriptor that becomes readable with a stop request, so that poll wakes up.
class StopEvent {
public:
    /// Throws std::system_error where no more files can be opened.
    explicit StopEvent(const std::stop_token& stop)
        : event_(opened()), callback_(stop, [this] { eventfd_write(event_.descriptor(), 1); })
    { }

    int descriptor() const { return event_.descriptor(); }

private:
    static PosixFile opened()
    {
        PosixFile event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
        if (!event)
            throw std::system_error(errno, std::generic_category(), "cannot wait for a stop");
        return event;
    }

    PosixFile event_;
    std::stop_callback<std::function<void()>> callback_; // behind the event, so that it goes first
};

} // namespace korvo
