#include "app/desktop/grid/GridView.h"
#include "app/desktop/window/Parts.h"

namespace korvo {

void addGrid(MainWindow& window)
{
    auto* const grid = new GridView(window);
    window.setGrid(grid);
    auto& commands = window.commands();
    constexpr int step = 24;
    commands.handle(
        Command::largerThumbnails, [grid] { grid->setThumbnailSize(grid->thumbnailSize() + step); });
    commands.handle(
        Command::smallerThumbnails, [grid] { grid->setThumbnailSize(grid->thumbnailSize() - step); });
}

} // namespace korvo
