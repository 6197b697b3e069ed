#pragma once

#include "base/MainThread.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <stop_token>
#include <thread>

namespace korvo {

/// The command line's main thread: the thread that made it, while it waits in runUntil().
class RunLoop : public MainThread {
public:
    void post(std::function<void()> work) override;
    Timer postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
    bool isCurrent() const override { return std::this_thread::get_id() == owner_; }

    /// Runs posted work, waiting for it, until `done` holds or a stop is asked for. Returns whether `done`
    /// holds.
    bool runUntil(const std::function<bool()>& done, const std::stop_token& stop);

private:
    using Clock = std::chrono::steady_clock;

    /// What is to run next, after waiting for it; nothing after a stop, and when there may be more to wait
    /// for.
    std::function<void()> next(const std::stop_token& stop);

    const std::thread::id owner_ = std::this_thread::get_id();
    std::mutex mutex_;
    std::condition_variable_any posted_;
    std::multimap<Clock::time_point, std::weak_ptr<std::function<void()>>> timers_;
    std::deque<std::function<void()>> queue_;
};

} // namespace korvo
