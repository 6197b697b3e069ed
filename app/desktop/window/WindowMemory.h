#pragma once

namespace korvo {

class MainWindow;

/// What comes back at the next start: the window's place and which sides are shown, for the user; the source,
/// the order, the filter and the selection, for the library.
void rememberWindow(MainWindow& window);
/// What cannot be brought back any more (an album that is gone) is passed over.
void restoreWindow(MainWindow& window);

} // namespace korvo
