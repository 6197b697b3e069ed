#pragma once

#include <cstdint>
#include <exception>
#include <stop_token>

namespace korvo {

/// What work throws that ends in the middle because a stop was requested: nobody wants its result.
class Stopped : public std::exception {
public:
    const char* what() const noexcept override { return "stopped"; }
};

/// Called at each of the small steps of long work, throws Stopped after a stop request. Looks only now and
/// then, so that it costs next to nothing.
class StopCheck {
public:
    static constexpr std::uint32_t stepsBetween = 1024;

    /// The token must outlive this.
    explicit StopCheck(const std::stop_token& stop) : stop_(stop) { }
    StopCheck(const StopCheck&) = delete;
    StopCheck& operator=(const StopCheck&) = delete;

    void operator()()
    {
        if (++steps_ % stepsBetween == 0 && stop_.stop_requested())
            throw Stopped();
    }

    /// A comparison that checks too, for std::sort. It refers to this.
    template <typename Before>
    auto with(Before before)
    {
        return [this, before](const auto& a, const auto& b) {
            (*this)();
            return before(a, b);
        };
    }

private:
    const std::stop_token& stop_;
    std::uint32_t steps_ = 0;
};

} // namespace korvo
