#include "bench/desktop/WatchedApplication.h"

#include <QEvent>
#include <QMetaEnum>

#include <ctime>
#include <utility>

namespace korvo::bench {

namespace {

/// What this thread has had of the processor.
double processorMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return 1e3 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e6;
}

} // namespace

double millisecondsSince(std::chrono::steady_clock::time_point begun)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun).count();
}

void WatchedApplication::await(std::function<bool(const QObject&)> isAwaited)
{
    isAwaited_ = std::move(isAwaited);
    wasPainted_ = false;
    shown_.reset();
}

bool WatchedApplication::notify(QObject* receiver, QEvent* event)
{
    const auto begun = Clock::now();
    const double worked = processorMilliseconds();
    const auto type = event->type();
    const std::string receiverClass = receiver->metaObject()->className(); // it may not outlive the event
    const bool paintsGrid = type == QEvent::Paint && receiver->parent()
        && receiver->parent()->objectName() == QLatin1String("grid");
    if (type == QEvent::Paint && isAwaited_ && isAwaited_(*receiver)) {
        wasPainted_ = true;
        isAwaited_ = {};
    }
    ++depth_;
    const bool handled = QApplication::notify(receiver, event);
    --depth_;
    paints_ += paintsGrid ? 1 : 0;
    if (depth_ == 0 && std::exchange(wasPainted_, false)) // all of the window that was to be painted is
        shown_ = Clock::now();
    if (const double taken = millisecondsSince(begun); depth_ == 0 && taken > longest_.milliseconds) {
        const char* const name = QMetaEnum::fromType<QEvent::Type>().valueToKey(type);
        longest_ = {taken, processorMilliseconds() - worked,
            std::string(name ? name : "event") + " of " + receiverClass};
    }
    return handled;
}

} // namespace korvo::bench
