#pragma once

#include "app/desktop/window/MainWindow.h"

namespace korvo {

// What the user does with versions.

/// The version that is looked at, if it is one.
std::optional<PhotoID> currentVersion(Desktop& desktop);
/// Asks for a new name.
void renameVersion(MainWindow& window, PhotoID version);
void removeVersion(Desktop& desktop, PhotoID version);

} // namespace korvo
