// Stacks and versions.

#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"
#include "app/view/ShowVersions.h"
#include "app/view/Stacking.h"
#include "catalog/store/GroupActions.h"

namespace korvo {

void addStackCommands(MainWindow& window)
{
    auto& commands = window.commands();
    auto& desktop = window.desktop();
    auto& store = desktop.store();
    auto& browser = desktop.browser();
    commands.handle(Command::stack, [&] { stackPhotos(store, browser.targets(), browser.current()); });
    commands.handle(Command::unstack, [&] { unstackPhotos(store, browser.targets()); });
    commands.handle(Command::toggleStack, [&] { toggleStacks(store, browser.targets()); });
    const auto isStacked = [&] { return browser.currentItem() && browser.currentItem()->stackID; };
    commands.handle(
        Command::setPick, [&] { makePick(store, *browser.current()); }, isStacked);
    for (const auto& [command, places] : {std::pair{Command::earlierInStack, -1}, {Command::laterInStack, 1}})
        commands.handle(
            command,
            [&, places = places] {
                if (const auto said = stepInStack(store, *browser.current(), places); !said.empty())
                    desktop.say(said);
            },
            isStacked);
    commands.handle(Command::newVersion,
        [&] { desktop.say(makeVersions(store, browser, desktop.clock().now()), Offer::undo); });
    commands.handle(Command::showVersions, [&] { browser.showVersions(browser.targets().front()); });
}

} // namespace korvo
