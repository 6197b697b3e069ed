#pragma once

#include <QApplication>

#include <functional>

namespace korvo {

/// The program as Qt runs it. What an event's work throws (a catalog on a stick that was pulled) is shown
/// instead of ending the program.
class Application : public QApplication {
public:
    using QApplication::QApplication;

    /// Takes what was thrown; without it, exceptions go on to main().
    std::function<void(const std::exception&)> failed;

    bool notify(QObject* receiver, QEvent* event) override;
};

} // namespace korvo
