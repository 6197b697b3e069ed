#include "app/desktop/window/NewWindow.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include <stdexcept>

namespace korvo {

void openInNewWindow(const std::filesystem::path& library)
{
    const auto program = QCoreApplication::applicationFilePath();
    if (!QProcess::startDetached(program, {"--library", QFile::decodeName(library.c_str())}))
        throw std::runtime_error("The window for " + library.string()
            + " could not be opened: " + program.toStdString() + " cannot be started. Install Korvo again.");
}

} // namespace korvo
