#pragma once

#include "app/desktop/window/MainWindow.h"

namespace korvo {

// What the user does with versions.

/// Makes a version of each photo that a command acts on, and goes where it can be seen: it becomes the
/// selected one beside its photo.
void newVersions(Desktop& desktop);
/// Makes a photo or version the selected one, in what is listed or else among its versions.
void openVersion(Desktop& desktop, PhotoID id);
/// The version that is looked at, if it is one.
std::optional<PhotoID> currentVersion(Desktop& desktop);
/// Asks for a new name.
void renameVersion(MainWindow& window, PhotoID version);
void removeVersion(Desktop& desktop, PhotoID version);

} // namespace korvo
