#pragma once

#include <QApplication>

#include <chrono>
#include <string>

namespace korvo::bench {

/// An application that notes when the grid was painted, and what kept its main thread the longest.
class WatchedApplication : public QApplication {
public:
    using Clock = std::chrono::steady_clock;

    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

    struct Blocking {
        double milliseconds = 0;
        std::string by; // the event and who got it
    };
    /// The longest that one event took since the last call.
    Blocking takeLongest() { return std::exchange(longest_, {}); }
    /// How often the grid was painted.
    int paints() const { return paints_; }

private:
    int depth_ = 0; // of events within events
    int paints_ = 0;
    Blocking longest_;
};

/// Milliseconds since a moment.
double millisecondsSince(std::chrono::steady_clock::time_point begun);

} // namespace korvo::bench
