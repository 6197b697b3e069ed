#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

class QWidget;

namespace korvo {

class MainWindow;

// Each opens a sheet or window of the menus, or brings the one that is open forward, and returns it. They
// close and go by themselves, and go with the window.

/// Chooses these files and folders, if any.
QWidget* showImportWindow(MainWindow& window, const std::vector<std::filesystem::path>& from = {});
QWidget* showApertureImport(MainWindow& window);
/// Changes a smart album; without an id makes one.
QWidget* showSmartAlbumSheet(MainWindow& window, std::optional<std::int64_t> id);
QWidget* showAutoStackSheet(MainWindow& window);
/// Both act on the photos that commands act on, which must be some.
QWidget* showShiftDates(MainWindow& window);
QWidget* showSetPosition(MainWindow& window);
/// Takes the positions of photos away once that is confirmed.
void clearPosition(MainWindow& window);
QWidget* showNamingPresets(MainWindow& window);
QWidget* showSettings(MainWindow& window);
QWidget* showKeys(MainWindow& window);
QWidget* showAbout(MainWindow& window);

} // namespace korvo
