#include "app/Libraries.h"
#include "app/desktop/MainWindow.h"
#include "platform/AppFolders.h"
#include "platform/FileDefaults.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    using namespace korvo;
    QApplication application(argc, argv);
    QApplication::setApplicationName("korvo-desktop");
    QApplication::setApplicationDisplayName("Korvo");
    QApplication::setApplicationVersion(KORVO_VERSION);
    try {
        FileDefaults defaults(userDefaultsFolder());
        const SystemClock clock;
        QtMainThread main;
        const auto folder = lastLibrary(defaults).value_or(picturesFolder() / "Korvo Library");
        Desktop desktop(main, openLibrary(folder, clock, defaults), clock, defaults);
        MainWindow window(desktop);
        window.resize(1280, 800);
        window.show();
        return QApplication::exec();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "korvo-desktop: %s\n", error.what());
        return 1;
    }
}
