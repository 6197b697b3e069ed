#pragma once

namespace korvo {

class MainWindow;

/// Writing metadata into the files, and going back to what they held.
void addWriteBackCommands(MainWindow& window);

} // namespace korvo
