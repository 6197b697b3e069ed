#pragma once

#include <csignal>

namespace korvo {

/// A write to a connection that the other end closed raises SIGPIPE, which would end the program. While this
/// lives, the calling thread does not see it and the write fails with EPIPE; other threads are not concerned.
class PipeSignalBlock {
public:
    PipeSignalBlock()
    {
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
    }
    ~PipeSignalBlock()
    {
        const timespec atOnce{};
        while (sigtimedwait(&pipe_, nullptr, &atOnce) > 0) { }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    PipeSignalBlock(const PipeSignalBlock&) = delete;
    PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;

private:
    sigset_t pipe_;
    sigset_t before_;
};

} // namespace korvo
