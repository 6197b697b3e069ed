#pragma once

namespace korvo {

class MainWindow;

// What each part brings to the window: widgets for its places, and who carries out which commands. Widgets
// are children of the window and live as long as it.

void addGrid(MainWindow& window);
void addMarking(MainWindow& window); ///< the keys that rate, flag, reject and label
void addLibraryCommands(MainWindow& window); ///< libraries, folders, projects, albums
void addPhotoCommands(MainWindow& window); ///< choosing, ordering, removing
void addStackCommands(MainWindow& window); ///< stacks and versions
void addOpenRecent(MainWindow& window);
void addToolbar(MainWindow& window);
void addStatusLine(MainWindow& window);
void addSidebar(MainWindow& window);
void addViewer(MainWindow& window); ///< viewer, compare, survey, full screen, filmstrip
void addAdjust(MainWindow& window); ///< the Adjust tab, and the commands on adjustments
void addInfo(MainWindow& window); ///< the Info tab
void addSheets(MainWindow& window); ///< the sheets and windows of the menus

} // namespace korvo
