#include "app/desktop/QtMainThread.h"

#include <QThread>
#include <QTimer>

namespace korvo {

void QtMainThread::post(std::function<void()> work)
{
    QMetaObject::invokeMethod(&receiver_, std::move(work), Qt::QueuedConnection);
}

MainThread::Timer QtMainThread::postAfter(std::chrono::milliseconds delay, std::function<void()> work)
{
    auto shared = std::make_shared<std::function<void()>>(std::move(work));
    post([this, delay, timer = std::weak_ptr(shared)] { // Qt's timers belong to the thread that starts them
        QTimer::singleShot(delay, &receiver_, [timer] {
            if (const auto alive = timer.lock())
                (*alive)();
        });
    });
    return shared;
}

bool QtMainThread::isCurrent() const
{
    return receiver_.thread() == QThread::currentThread();
}

} // namespace korvo
