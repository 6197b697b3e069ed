#include "app/desktop/Jobs.h"

#include "base/UserError.h"

#include <algorithm>

namespace korvo {

JobContext::JobContext(const Task::Context& task, std::shared_ptr<JobState> state)
    : task_(task), stop_(task.stopToken()), state_(std::move(state))
{ }

void JobContext::progress(std::size_t done, std::size_t total)
{
    state_->done = done;
    state_->total = total;
}

void JobContext::fail(std::string sentence)
{
    const std::lock_guard lock(state_->mutex);
    state_->failures.push_back(std::move(sentence));
}

double Job::perSecond() const
{
    const std::chrono::duration<double> taken = (ended_ ? end_ : Clock::now()) - begun_;
    return taken.count() > 0.5 ? static_cast<double>(done()) / taken.count() : 0;
}

void Job::cancel()
{
    cancelled_ = true;
    stop_.request_stop();
}

std::size_t Job::failed() const
{
    const std::lock_guard lock(state_->mutex);
    return state_->failures.size();
}

std::vector<std::string> Job::failures() const
{
    const std::lock_guard lock(state_->mutex);
    return state_->failures;
}

std::shared_ptr<Job> Jobs::start(std::string title, Stopping stopping, Work work, Finished finished)
{
    forgetEnded();
    auto job = std::make_shared<Job>();
    job->title_ = std::move(title);
    job->stopping_ = stopping;
    jobs_.push_back(job);
    auto end = [this, job = std::weak_ptr(job), finished = std::move(finished)](std::string summary) {
        const auto ended = job.lock();
        if (!ended)
            return;
        ended->summary_ = std::move(summary);
        ended->ended_ = true;
        ended->end_ = Job::Clock::now();
        if (finished)
            finished(*ended);
        changed.emit();
    };
    // The task's own stop ends it with the window; the job's lets it finish and say what was done.
    job->task_ = runInBackground(main_,
        [work = std::move(work), end = std::move(end), state = job->state_, cancel = job->stop_](
            const Task::Context& task) {
            auto stop = cancel;
            const std::stop_callback closing(task.stopToken(), [&] { stop.request_stop(); });
            JobContext context(task, state);
            context.stop_ = stop.get_token();
            std::string summary;
            try {
                summary = work(context);
            } catch (const std::exception& error) {
                context.fail(summary = textForUser(error));
            }
            task.deliver([end, summary] { end(summary); });
        });
    changed.emit();
    return job;
}

std::vector<std::shared_ptr<Job>> Jobs::running() const
{
    std::vector<std::shared_ptr<Job>> found;
    std::ranges::copy_if(jobs_, std::back_inserter(found), [](const auto& job) { return job->isRunning(); });
    return found;
}

void Jobs::forget(std::span<const std::shared_ptr<Job>> seen)
{
    std::erase_if(jobs_,
        [&](const auto& job) { return !job->isRunning() && std::ranges::find(seen, job) != seen.end(); });
    changed.emit();
}

void Jobs::forgetEnded()
{
    std::erase_if(jobs_, [](const auto& job) { return !job->isRunning() && job->failed() == 0; });
    const auto hasEnded = [](const auto& job) { return !job->isRunning(); };
    for (auto many = std::ranges::count_if(jobs_, hasEnded); many > mostKept; --many)
        jobs_.erase(std::ranges::find_if(jobs_, hasEnded));
}

} // namespace korvo
