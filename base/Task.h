#pragma once

#include "base/MainThread.h"

#include <atomic>
#include <functional>
#include <memory>
#include <stop_token>
#include <thread>
#include <utility>
#include <vector>

namespace korvo {

/// A piece of background work. Destroying it asks the work to stop, waits for it, and guarantees that nothing
/// it posted is delivered any more. It is created, moved and destroyed on the main thread.
class Task {
public:
    /// What the work is handed: whether to stop, and a way to hand results to the main thread.
    class Context {
    public:
        Context(MainThread& main, std::shared_ptr<bool> alive, std::stop_token stop)
            : main_(&main), alive_(std::move(alive)), stop_(std::move(stop))
        { }

        /// True once the task was cancelled; long work looks often and returns soon.
        bool stopRequested() const { return stop_.stop_requested(); }

        /// For waits that a cancel must end.
        std::stop_token stopToken() const { return stop_; }

        /// Runs `work` on the main thread unless the task is gone by then.
        void deliver(std::function<void()> work) const
        {
            main_->post([alive = alive_, delivery = std::move(work)] {
                if (*alive)
                    delivery();
            });
        }

    private:
        MainThread* main_;
        std::shared_ptr<bool> alive_;
        std::stop_token stop_;
    };

    Task() = default;
    Task(Task&&) noexcept = default;
    Task& operator=(Task&& other) noexcept
    {
        cancel();
        alive_ = std::move(other.alive_);
        done_ = std::move(other.done_);
        thread_ = std::move(other.thread_);
        return *this;
    }
    ~Task() { cancel(); }

    /// Whether the task holds work that has not been cancelled; it may have finished.
    explicit operator bool() const { return thread_.joinable(); }

    /// Whether the work has come to its end, so that nobody would wait for it.
    bool isDone() const { return !done_ || *done_; }

    /// Asks the work to stop without waiting. Nothing is delivered from now on.
    void requestStop()
    {
        if (alive_)
            *alive_ = false;
        thread_.request_stop();
    }

    /// Stops the work, waits for its end, and forgets it.
    void cancel()
    {
        requestStop();
        thread_ = {};
        alive_ = nullptr;
        done_ = nullptr;
    }

private:
    friend Task runInBackground(MainThread&, std::function<void(const Context&)>);

    std::shared_ptr<bool> alive_; // touched on the main thread only
    std::shared_ptr<std::atomic<bool>> done_;
    std::jthread thread_;
};

/// Runs `work` on a thread of its own. `main` must outlive the task. Work catches its own errors and delivers
/// them as results: one that escapes ends the program.
[[nodiscard]] Task runInBackground(MainThread& main, std::function<void(const Task::Context&)> work);

/// Tasks that were begun in vain and may take long to notice it, as those that wait for a disk or a camera:
/// whoever leaves them here goes on at once. Destroying it waits for them. Used on the main thread.
class LeftTasks {
public:
    void take(Task task)
    {
        task.requestStop();
        std::erase_if(tasks_, [](const Task& left) { return left.isDone(); });
        tasks_.push_back(std::move(task));
    }

private:
    std::vector<Task> tasks_;
};

/// Frees what is large where nobody waits for it.
template <typename T>
void freeElsewhere(MainThread& main, LeftTasks& left, T value)
{
    left.take(runInBackground(main,
        [held = std::make_shared<T>(std::move(value))](const Task::Context&) mutable { held = nullptr; }));
}

} // namespace korvo
