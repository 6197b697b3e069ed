#pragma once

#include "base/MainThread.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace korvo {

/// A main thread that tests drive by hand: the thread that made it is the main thread, posted work runs when
/// the test says so, and time passes only through advance().
class ManualMainThread : public MainThread {
public:
    void post(std::function<void()> work) override;
    Timer postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
    bool isCurrent() const override { return std::this_thread::get_id() == owner_; }

    /// Runs what has been posted, and what that posts. Returns whether there was anything.
    bool runPending();

    /// Lets time pass: runs the timers that fall due, in order, and what is posted.
    void advance(std::chrono::milliseconds time);

    /// Runs posted work, waiting for it, until `done` holds; false when that took more than 30 s.
    bool runUntil(const std::function<bool()>& done);

private:
    struct Delayed {
        std::chrono::milliseconds due;
        std::weak_ptr<std::function<void()>> work;
    };

    std::thread::id owner_ = std::this_thread::get_id();
    std::mutex mutex_;
    std::condition_variable posted_;
    std::deque<std::function<void()>> queue_;
    std::vector<Delayed> timers_; // used by the owner only
    std::chrono::milliseconds now_{0};
};

} // namespace korvo
