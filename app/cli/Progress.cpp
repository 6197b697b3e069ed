#include "app/cli/Progress.h"

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace korvo {

namespace {

constexpr auto redrawInterval = std::chrono::milliseconds(100);
constexpr std::size_t barWidth = 24;

std::string bar(double share)
{
    const auto filled = static_cast<std::size_t>(share * static_cast<double>(barWidth));
    return "[" + std::string(filled, '#') + std::string(barWidth - filled, '.') + "]";
}

std::string duration(double seconds)
{
    const auto whole = static_cast<long>(seconds);
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

} // namespace

Progress::Progress(std::string verb, Mode mode)
    : verb_(std::move(verb)), shown_(mode == Mode::shown && isatty(STDERR_FILENO))
{ }

Progress::~Progress()
{
    if (shown_ && drawn_ != std::chrono::steady_clock::time_point{})
        fmt::print(stderr, "\r{}\033[K\n", line());
}

void Progress::setTotal(std::size_t total)
{
    const std::lock_guard lock(mutex_);
    total_ = total;
}

void Progress::setDone(std::size_t done)
{
    if (!shown_)
        return;
    const std::lock_guard lock(mutex_);
    done_ = done;
    const auto now = std::chrono::steady_clock::now();
    if (now - drawn_ < redrawInterval)
        return;
    drawn_ = now;
    fmt::print(stderr, "\r{}\033[K", line());
    std::fflush(stderr);
}

std::string Progress::line() const
{
    const auto elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun_).count();
    const auto rate = static_cast<double>(done_) / std::max(elapsed, 1e-3);
    if (total_ == 0)
        return fmt::format("{} {} ({:.0f}/s)", verb_, done_, rate);
    const auto left = static_cast<double>(total_ - std::min(done_, total_)) / std::max(rate, 1e-3);
    const auto share = std::min(1.0, static_cast<double>(done_) / static_cast<double>(total_));
    return fmt::format(
        "{} {} {}/{} ({:.0f}/s, {} left)", verb_, bar(share), done_, total_, rate, duration(left));
}

} // namespace korvo
