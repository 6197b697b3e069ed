#include "app/desktop/start/Application.h"

namespace korvo {

bool Application::notify(QObject* receiver, QEvent* event)
try {
    return QApplication::notify(receiver, event);
} catch (const std::exception& error) {
    if (!failed)
        throw;
    failed(error);
    return true;
}

} // namespace korvo
