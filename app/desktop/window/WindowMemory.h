#pragma once

#include "base/Task.h"

namespace korvo {

class MainWindow;

/// What comes back at the next start: the window's place and which sides are shown, for the user; the source,
/// the order, the filter and the selection, for the library.
class WindowMemory {
public:
    /// `window` must outlive it.
    explicit WindowMemory(MainWindow& window) : window_(window) { }

    void remember();
    /// The same without waiting for the disk, unless it is still being done from before.
    void rememberInBackground();
    /// What cannot be brought back any more (an album that is gone) is passed over.
    void restore();

private:
    MainWindow& window_;
    Task writing_;
};

} // namespace korvo
