#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace korvo {

/// The thread that owns all published state. The window, the command line and the tests each bring their own.
/// Every function may be called from any thread.
class MainThread {
public:
    /// A delayed call. Destroying it, on the main thread, cancels the call if it has not begun.
    using Timer = std::shared_ptr<void>;

    virtual ~MainThread() = default;

    /// Runs `work` on the main thread, after everything posted before it.
    virtual void post(std::function<void()> work) = 0;

    /// Runs `work` on the main thread once `delay` has passed, unless the returned timer is destroyed before.
    [[nodiscard]] virtual Timer postAfter(std::chrono::milliseconds delay, std::function<void()> work) = 0;

    /// Whether the calling thread is the main thread.
    virtual bool isCurrent() const = 0;

    /// Ends the program with a message when called from another thread: published state changes here only.
    void assertCurrent() const;
};

} // namespace korvo
