#include "base/Task.h"

namespace korvo {

Task runInBackground(MainThread& main, std::function<void(const Task::Context&)> work)
{
    Task task;
    task.alive_ = std::make_shared<bool>(true);
    task.thread_ = std::jthread([&main, alive = task.alive_, job = std::move(work)](std::stop_token stop) {
        job(Task::Context(main, alive, std::move(stop)));
    });
    return task;
}

} // namespace korvo
