#include "app/desktop/MainWindow.h"
#include "app/desktop/Parts.h"
#include "app/desktop/sheets/Sheets.h"

namespace korvo {

namespace {

struct NamedSheet {
    std::string_view name;
    Command command;
    QWidget* (*show)(MainWindow&);
};

constexpr NamedSheet sheets[] = {
    {"import", Command::import, [](MainWindow& window) { return showImportWindow(window); }},
    {"aperture", Command::importAperture, showApertureImport},
    {"smart-album", Command::newSmartAlbum,
        [](MainWindow& window) { return showSmartAlbumSheet(window, std::nullopt); }},
    {"auto-stack", Command::autoStack, showAutoStackSheet},
    {"naming", Command::namingPresets, showNamingPresets},
    {"settings", Command::settings, showSettings},
    {"keys", Command::keys, showKeys},
    {"about", Command::about, showAbout},
};

} // namespace

QWidget* showSheet(MainWindow& window, std::string_view name)
{
    for (const auto& sheet : sheets)
        if (sheet.name == name)
            return sheet.show(window);
    return nullptr;
}

void addSheets(MainWindow& window)
{
    for (const auto& sheet : sheets)
        window.commands().handle(sheet.command, [&window, show = sheet.show] { show(window); });
}

} // namespace korvo
