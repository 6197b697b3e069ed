#pragma once

#include <QApplication>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace korvo::bench {

/// An application that notes when the grid was painted, or what else is awaited, and what kept its main
/// thread the longest.
class WatchedApplication : public QApplication {
public:
    using Clock = std::chrono::steady_clock;

    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

    struct Blocking {
        double milliseconds = 0;
        double worked = 0; // of them, by this thread; the rest it waited for others, the machine's too
        std::string by; // the event and who got it
    };
    /// The longest that one event took since the last call.
    Blocking takeLongest() { return std::exchange(longest_, {}); }
    /// How often the grid was painted.
    int paints() const { return paints_; }

    /// Waits for a widget of which this holds when it is painted.
    void await(std::function<bool(const QObject&)> isAwaited);
    /// When the window had the pixels of it; nothing until then.
    const std::optional<Clock::time_point>& shown() const { return shown_; }

private:
    int depth_ = 0; // of events within events
    int paints_ = 0;
    Blocking longest_;
    std::function<bool(const QObject&)> isAwaited_;
    bool wasPainted_ = false; // in the event that is being handled
    std::optional<Clock::time_point> shown_;
};

/// Milliseconds since a moment.
double millisecondsSince(std::chrono::steady_clock::time_point begun);

} // namespace korvo::bench
