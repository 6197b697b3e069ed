#pragma once

#include "base/Task.h"
#include "catalog/Catalog.h"

#include <future>

namespace korvo {

/// Makes what runs through the connection end with a DatabaseError once a stop is requested, also in the
/// middle of a long statement. The token must outlive the connection.
inline void endWith(Database& database, const std::stop_token& stop)
{
    constexpr int steps = 10'000; // of SQLite's machine, a fraction of a millisecond
    sqlite3_progress_handler(
        database.handle(), steps,
        [](void* token) { return int(static_cast<const std::stop_token*>(token)->stop_requested()); },
        const_cast<std::stop_token*>(&stop));
}

/// Something that is read from the library on a thread and a connection of its own. What is committed after
/// its making may be missing there. Destroying it ends the reading. Used on the main thread.
template <typename Result>
class Reading {
public:
    using Read = std::function<Result(Database&, const std::stop_token&)>;

    /// `ended` is called once there is something to take. `main` and `catalog` must outlive this.
    Reading(MainThread& main, const Catalog& catalog, Read read, std::function<void()> ended)
    {
        const auto promise = std::make_shared<std::promise<Result>>();
        result_ = promise->get_future();
        task_ = runInBackground(main,
            [promise, &catalog, read = std::move(read), ended = std::move(ended)](
                const Task::Context& context) {
                try {
                    auto database = catalog.lookingConnection();
                    endWith(database, context.stopToken());
                    promise->set_value(read(database, context.stopToken()));
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
    /// What was read, once. Throws what kept it from being read.
    Result take() { return result_.get(); }

private:
    std::future<Result> result_;
    Task task_;
};

} // namespace korvo
