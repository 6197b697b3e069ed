#include "tests/support/ManualMainThread.h"

#include <algorithm>

namespace korvo {

void ManualMainThread::post(std::function<void()> work)
{
    {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
    }
    posted_.notify_all();
}

MainThread::Timer ManualMainThread::postAfter(std::chrono::milliseconds delay, std::function<void()> work)
{
    auto timer = std::make_shared<std::function<void()>>(std::move(work));
    timers_.push_back({now_ + delay, timer});
    return timer;
}

bool ManualMainThread::runPending()
{
    for (bool any = false;; any = true) {
        std::function<void()> work;
        {
            const std::lock_guard lock(mutex_);
            if (queue_.empty())
                return any;
            work = std::move(queue_.front());
            queue_.pop_front();
        }
        work();
    }
}

void ManualMainThread::advance(std::chrono::milliseconds time)
{
    const auto end = now_ + time;
    runPending();
    for (;;) {
        const auto next = std::min_element(
            timers_.begin(), timers_.end(), [](const Delayed& a, const Delayed& b) { return a.due < b.due; });
        if (next == timers_.end() || next->due > end)
            break;
        now_ = next->due;
        const auto work = next->work.lock();
        timers_.erase(next);
        if (work)
            (*work)();
        runPending();
    }
    now_ = end;
}

bool ManualMainThread::runUntil(const std::function<bool()>& done)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (runPending(), !done()) {
        std::unique_lock lock(mutex_);
        if (!posted_.wait_until(lock, deadline, [this] { return !queue_.empty(); }))
            return false;
    }
    return true;
}

} // namespace korvo
