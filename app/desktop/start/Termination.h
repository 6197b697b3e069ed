#pragma once

#include <QObject>

#include <functional>

namespace korvo {

/// Calls `end` on the main thread when the system asks the program to end (the session's end, Ctrl-C in the
/// terminal, the terminal's end), as long as the context is there. A second such signal ends the program at
/// once. To be called once. Throws std::system_error where the system gives no pipe.
void onTermination(QObject& context, std::function<void()> end);

} // namespace korvo
