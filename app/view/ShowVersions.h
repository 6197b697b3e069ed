#pragma once

#include "app/view/Browser.h"

#include <string>

namespace korvo {

/// Makes a version of each photo that commands act on, as one step of undo, and goes where it can be seen:
/// one of one photo among the photo's versions, unless versions are listed here as photos are. Returns a
/// sentence that says what was made, and the way back.
std::string makeVersions(LibraryStore& store, Browser& browser, double now);

/// Makes a version, or a photo, the current one, among its versions if it is not listed here. Returns a
/// sentence when it cannot be seen there either, else nothing.
std::string openVersion(LibraryStore& store, Browser& browser, PhotoID id);

} // namespace korvo
