#pragma once

#include "base/Signal.h"
#include "base/Task.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace korvo {

/// What a job's work is handed. Its functions may be called from any thread.
class JobContext {
public:
    /// How far it is; a total of 0 is not known.
    void progress(std::size_t done, std::size_t total);
    /// Something that went wrong; the rest goes on.
    void fail(std::string sentence);
    const std::stop_token& stop() const { return stop_; }
    /// Runs `work` on the main thread unless the job is gone by then.
    void deliver(std::function<void()> work) const { task_.deliver(std::move(work)); }

private:
    friend class Job;
    friend class Jobs;
    explicit JobContext(const Task::Context& task, std::shared_ptr<struct JobState> state);

    Task::Context task_;
    std::stop_token stop_;
    std::shared_ptr<struct JobState> state_;
};

/// What is shared between a job and its work.
struct JobState {
    std::atomic<std::size_t> done = 0;
    std::atomic<std::size_t> total = 0;
    std::mutex mutex;
    std::vector<std::string> failures;
};

/// What is left of a job that is stopped.
enum class Stopping {
    keeps, ///< what was done till then
    drops, ///< nothing: what it does is stored at its end
};

/// A long piece of work as the status line shows it. Used on the main thread.
class Job {
public:
    using Clock = std::chrono::steady_clock;

    const std::string& title() const { return title_; }
    Stopping stopping() const { return stopping_; }
    std::size_t done() const { return state_->done; }
    std::size_t total() const { return state_->total; } ///< 0: not known
    double perSecond() const;
    bool isRunning() const { return !ended_; }
    bool isCancelled() const { return cancelled_; }
    /// Asks it to stop; it ends a little later.
    void cancel();
    /// What it said at its end; empty while it runs.
    const std::string& summary() const { return summary_; }
    std::vector<std::string> failures() const;
    std::size_t failed() const; ///< how many of them

private:
    friend class Jobs;
    std::string title_;
    Stopping stopping_ = Stopping::keeps;
    std::shared_ptr<JobState> state_ = std::make_shared<JobState>();
    std::stop_source stop_;
    std::string summary_;
    bool cancelled_ = false;
    bool ended_ = false;
    Clock::time_point begun_ = Clock::now();
    Clock::time_point end_;
    Task task_;
};

/// The long jobs of the window: each on a thread of its own, shown in the status line with progress, rate and
/// cancel, never modal. Their failures are kept until the user has seen them. Used on the main thread;
/// destroying it stops them all.
class Jobs {
public:
    /// Returns one line that says what was done ("Imported 24 photos."); may be empty. What it throws becomes
    /// the line and a failure.
    using Work = std::function<std::string(JobContext&)>;
    using Finished = std::function<void(const Job&)>;

    explicit Jobs(MainThread& main) : main_(main) { }

    Signal<> changed; ///< one has begun, ended, or was cancelled; running ones are looked at now and then

    /// Starts a job; `finished` is called on the main thread at its end, cancelled or not.
    std::shared_ptr<Job> start(std::string title, Stopping stopping, Work work, Finished finished = {});

    /// Those that run and those that ended with failures that were not seen yet, oldest first.
    const std::vector<std::shared_ptr<Job>>& all() const { return jobs_; }
    /// Those that run, oldest first.
    std::vector<std::shared_ptr<Job>> running() const;
    /// The failures of these have been seen; those that run still are kept.
    void forget(std::span<const std::shared_ptr<Job>> seen);

private:
    static constexpr std::ptrdiff_t mostKept = 20; // that have ended with failures

    void forgetEnded();

    MainThread& main_;
    std::vector<std::shared_ptr<Job>> jobs_;
};

} // namespace korvo
