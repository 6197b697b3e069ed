#include "app/desktop/sheets/Sheets.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"

namespace korvo {

void addSheets(MainWindow& window)
{
    const auto handle = [&window](Command command, auto show) {
        window.commands().handle(command, [&window, show] { show(window); });
    };
    handle(Command::importPhotos, [](MainWindow& over) { showImportWindow(over); });
    handle(Command::importAperture, showApertureImport);
    handle(Command::newSmartAlbum, [](MainWindow& over) { showSmartAlbumSheet(over, std::nullopt); });
    handle(Command::autoStack, showAutoStackSheet);
    handle(Command::shiftDates, showShiftDates);
    handle(Command::setPosition, showSetPosition);
    handle(Command::clearPosition, clearPosition);
    handle(Command::namingPresets, showNamingPresets);
    handle(Command::settings, showSettings);
    handle(Command::keys, showKeys);
    handle(Command::about, showAbout);
}

} // namespace korvo
