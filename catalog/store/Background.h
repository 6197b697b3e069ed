#pragma once

#include "base/Task.h"

#include <chrono>
#include <future>

namespace korvo {

/// A result that is worked out on a thread of its own. Destroying it ends the work. Used on the main thread.
template <typename Result>
class Background {
public:
    using Work = std::function<Result(const std::stop_token&)>;

    /// `ended` is called once there is something to take. `main` must outlive this.
    Background(MainThread& main, Work work, std::function<void()> ended) : main_(&main)
    {
        const auto promise = std::make_shared<std::promise<Result>>();
        result_ = promise->get_future();
        task_ = runInBackground(
            main, [promise, work = std::move(work), ended = std::move(ended)](const Task::Context& context) {
                try {
                    promise->set_value(work(context.stopToken()));
                } catch (...) { // who takes the result meets it
                    promise->set_exception(std::current_exception());
                }
                context.deliver(ended);
            });
    }

    /// Waits for the end, but not longer than that; returns whether there is something to take.
    bool waitFor(std::chrono::milliseconds patience)
    {
        return result_.wait_for(patience) == std::future_status::ready;
    }
    /// Ends the work as the destructor does, but without waiting for that, nor for what has come of it to be
    /// freed.
    void leaveTo(LeftTasks& left)
    {
        left.take(std::move(task_));
        freeElsewhere(*main_, left, std::move(result_));
    }
    /// The result, once it is there, and no more than once. Throws what kept it from being worked out.
    Result take()
    {
        task_.cancel(); // all but over; its thread would else free the exception that is looked at here
        return result_.get();
    }

private:
    MainThread* main_;
    std::future<Result> result_;
    Task task_;
};

} // namespace korvo
