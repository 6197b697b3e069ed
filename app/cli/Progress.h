#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>

namespace korvo {

/// A line on standard error that counts what is done, with the rate and, once the total is known, a bar and
/// the time left. Shown on a terminal only. Used from any thread.
class Progress {
public:
    enum class Mode { shown, quiet };

    /// `verb` as in "Adding". Quiet, and where standard error is no terminal, nothing is ever written.
    Progress(std::string verb, Mode mode);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    bool isShown() const { return shown_; }
    void setTotal(std::size_t total);
    void setDone(std::size_t done);

private:
    std::string line() const;

    std::string verb_;
    bool shown_;
    std::mutex mutex_;
    std::size_t total_ = 0;
    std::size_t done_ = 0;
    std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point drawn_{};
};

} // namespace korvo
