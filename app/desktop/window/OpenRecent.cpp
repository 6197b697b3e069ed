#include "app/Libraries.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/NewWindow.h"
#include "app/desktop/window/Parts.h"

#include "base/Text.h"

#include <QMenu>

namespace korvo {

/// "Open Recent" in the File menu: the libraries that were opened last, but for the one that is open, as they
/// are when the menu opens, without those whose disk is away.
void addOpenRecent(MainWindow& window)
{
    auto* const menu = new QMenu(&window);
    window.commands().action(Command::openRecent)->setMenu(menu);
    QObject::connect(menu, &QMenu::aboutToShow, &window, [&window, menu] {
        auto& desktop = window.desktop();
        menu->clear();
        for (const auto& folder : recentLibraries(desktop.defaults())) {
            if (folder == desktop.store().catalog().libraryURL())
                continue;
            const auto text = folder.filename().string() + " — " + folder.parent_path().string();
            menu->addAction(qt(repairedUtf8(text)).replace('&', "&&"), &window,
                [&desktop, folder] { desktop.attempt([&] { openInNewWindow(folder); }); });
        }
        if (menu->isEmpty())
            menu->addAction("No other library was opened yet")->setEnabled(false);
    });
    window.commands().handle(Command::openRecent, [] {}); // the menu does it
}

} // namespace korvo
