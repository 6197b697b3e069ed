#pragma once

#include <stop_token>
#include <thread>

namespace korvo {

/// Turns Ctrl-C, and the signal that ends programs, into a stop request. A second one ends the program at
/// once. Made before any other thread, since threads inherit which signals they leave alone.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();

    std::stop_token token() const { return source_.get_token(); }

private:
    std::stop_source source_;
    std::jthread waiter_;
};

} // namespace korvo
