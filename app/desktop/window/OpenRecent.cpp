#include "app/Libraries.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/NewWindow.h"
#include "app/desktop/window/Parts.h"

#include "base/Text.h"

#include <QMenu>

namespace korvo {

namespace {

/// Looks for the library in the background, as its disk may keep whoever asks waiting.
Task openIfThere(Desktop& desktop, const std::filesystem::path& library)
{
    return runInBackground(desktop.mainThread(), [&desktop, library](const Task::Context& context) {
        context.deliver([&desktop, library, isThere = holdsCatalog(library)] {
            desktop.attempt([&] {
                if (isThere)
                    return openInNewWindow(library);
                const auto texts = awayTexts(library);
                throw std::runtime_error(texts.title + " " + texts.details);
            });
        });
    });
}

} // namespace

/// "Open Recent" in the File menu: the libraries that were opened last, but for the one that is open, as they
/// are remembered when the menu opens.
void addOpenRecent(MainWindow& window)
{
    auto* const menu = new QMenu(&window);
    window.commands().action(Command::openRecent)->setMenu(menu);
    const auto opening = std::make_shared<Task>();
    QObject::connect(menu, &QMenu::aboutToShow, &window, [&window, menu, opening] {
        auto& desktop = window.desktop();
        menu->clear();
        for (const auto& folder : rememberedLibraries(desktop.defaults())) {
            if (folder == desktop.store().catalog().libraryURL())
                continue;
            const auto text = folder.filename().string() + " — " + folder.parent_path().string();
            menu->addAction(qt(repairedUtf8(text)).replace('&', "&&"), &window, [&desktop, folder, opening] {
                desktop.leftTasks().take(std::move(*opening));
                *opening = openIfThere(desktop, folder);
            });
        }
        if (menu->isEmpty())
            menu->addAction("No other library was opened yet")->setEnabled(false);
    });
    window.commands().handle(Command::openRecent, [] {}); // the menu does it
}

} // namespace korvo
