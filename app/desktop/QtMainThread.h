#pragma once

#include "base/MainThread.h"

#include <QObject>

namespace korvo {

/// The window's main thread: the one that runs Qt's event loop.
class QtMainThread : public MainThread {
public:
    void post(std::function<void()> work) override;
    Timer postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
    bool isCurrent() const override;

private:
    QObject receiver_; // lives on the main thread, and takes with it what is still posted
};

} // namespace korvo
