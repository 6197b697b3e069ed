#include "base/Task.h"

namespace korvo {

Task runInBackground(MainThread& main, std::function<void(const Task::Context&)> work)
{
    Task task;
    task.alive_ = std::make_shared<bool>(true);
    task.done_ = std::make_shared<std::atomic<bool>>(false);
    task.thread_ = std::jthread(
        [&main, alive = task.alive_, done = task.done_, job = std::move(work)](std::stop_token stop) {
            job(Task::Context(main, alive, std::move(stop)));
            *done = true;
        });
    return task;
}

} // namespace korvo
