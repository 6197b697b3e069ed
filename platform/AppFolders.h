#pragma once

#include <filesystem>

namespace korvo {

/// Where the program keeps what it fetched or made for itself, such as models: $KORVO_DATA when it is set,
/// else the system's place for application data. It need not exist yet. Throws std::runtime_error without a
/// home folder.
std::filesystem::path applicationDataFolder();

/// Where the user's defaults are kept: $KORVO_CONFIG when it is set, else the system's place for settings. It
/// need not exist yet. Throws std::runtime_error without a home folder.
std::filesystem::path userDefaultsFolder();

/// The user's folder for pictures, under whatever name; it need not exist. Throws likewise.
std::filesystem::path picturesFolder();

/// The "share" beside the folder of the program, for files that are installed with it. It need not exist.
std::filesystem::path shareFolder();

} // namespace korvo
