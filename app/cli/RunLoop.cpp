#include "app/cli/RunLoop.h"

namespace korvo {

void RunLoop::post(std::function<void()> work)
{
    {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
    }
    posted_.notify_all();
}

MainThread::Timer RunLoop::postAfter(std::chrono::milliseconds delay, std::function<void()> work)
{
    auto timer = std::make_shared<std::function<void()>>(std::move(work));
    {
        const std::lock_guard lock(mutex_);
        timers_.emplace(Clock::now() + delay, timer);
    }
    posted_.notify_all();
    return timer;
}

bool RunLoop::runUntil(const std::function<bool()>& done, const std::stop_token& stop)
{
    while (!done()) {
        if (stop.stop_requested())
            return false;
        if (const auto work = next(stop))
            work();
    }
    return true;
}

std::function<void()> RunLoop::next(const std::stop_token& stop)
{
    const auto isPosted = [this] { return !queue_.empty(); };
    std::unique_lock lock(mutex_);
    if (timers_.empty())
        posted_.wait(lock, stop, isPosted);
    else
        posted_.wait_until(lock, stop, timers_.begin()->first, isPosted);
    if (!queue_.empty()) {
        auto work = std::move(queue_.front());
        queue_.pop_front();
        return work;
    }
    if (timers_.empty() || timers_.begin()->first > Clock::now())
        return {};
    const auto timer = timers_.begin()->second.lock();
    timers_.erase(timers_.begin());
    return timer ? std::function<void()>([timer] { (*timer)(); }) : std::function<void()>();
}

} // namespace korvo
