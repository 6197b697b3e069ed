#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace korvo {

/// Keeps one observer connected to a signal; destroying it disconnects. It may outlive the signal.
class Connection {
public:
    Connection() = default;
    explicit Connection(std::shared_ptr<void> slot) : slot_(std::move(slot)) { }

private:
    std::shared_ptr<void> slot_;
};

/// A list of observers, called in the order they were connected. Used on one thread. Observers may connect,
/// disconnect and emit from inside a call; those connected during an emission are called from the next one
/// on. What one of them throws keeps no other from hearing: it is thrown on in the end, the first of several.
template <typename... Args>
class Signal {
public:
    [[nodiscard]] Connection connect(std::function<void(Args...)> observer)
    {
        auto slot = std::make_shared<Slot>(std::move(observer));
        slots_.push_back(slot);
        return Connection(std::move(slot));
    }

    void emit(Args... args)
    {
        std::erase_if(slots_, [](const auto& slot) { return slot.expired(); });
        const auto current = slots_;
        std::exception_ptr fault;
        for (const auto& slot : current)
            try {
                if (const auto observer = slot.lock())
                    (*observer)(args...);
            } catch (...) {
                if (!fault)
                    fault = std::current_exception();
            }
        if (fault)
            std::rethrow_exception(fault);
    }

private:
    using Slot = std::function<void(Args...)>;
    std::vector<std::weak_ptr<Slot>> slots_;
};

} // namespace korvo
