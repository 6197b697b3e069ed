#include "app/desktop/window/WindowMemory.h"

#include "app/desktop/grid/GridView.h"
#include "app/desktop/sidebar/Sidebar.h"
#include "app/desktop/window/MainWindow.h"
#include "app/view/ViewMemory.h"

#include <QCryptographicHash>
#include <QScreen>

#include <charconv>

namespace korvo {

namespace {

constexpr auto geometryKey = "korvo_window_geometry";
constexpr auto sidesKey = "korvo_window_sides";
constexpr auto thumbSizeKey = "korvo_thumb_size"; // device-independent pixels

constexpr auto viewKeys = "korvo_view_", sidebarKeys = "korvo_sidebar_";

/// Each library has its own.
std::string keyOfLibrary(const char* keys, const Catalog& catalog)
{
    const auto path = QByteArray::fromStdString(catalog.libraryURL().native());
    return keys + QCryptographicHash::hash(path, QCryptographicHash::Sha256).toHex().left(16).toStdString();
}

void showFirst(MainWindow& window)
{
    constexpr QSize usual{1280, 800}, withFrame{1320, 860};
    const QSize room = window.screen()->availableSize();
    window.resize(usual);
    if (room.width() < withFrame.width() || room.height() < withFrame.height())
        window.setWindowState(Qt::WindowMaximized);
}

using Values = std::vector<std::pair<std::string, std::string>>;

Values valuesOf(MainWindow& window)
{
    auto& store = window.desktop().store();
    const auto& catalog = store.catalog();
    return {{geometryKey, window.saveGeometry().toBase64().toStdString()},
        {sidesKey, window.saveSides().toBase64().toStdString()},
        {thumbSizeKey, std::to_string(window.grid().thumbnailSize())},
        {keyOfLibrary(sidebarKeys, catalog), window.sidebar().openLines()},
        {keyOfLibrary(viewKeys, catalog), textOf(viewMemory(store))}};
}

void write(Defaults& defaults, const Values& values)
{
    try {
        for (const auto& [key, value] : values)
            defaults.setIfOther(key, value);
    } catch (const std::exception&) { // only a convenience: no reason to keep a window from closing
    }
}

} // namespace

void WindowMemory::remember()
{
    writing_.cancel(); // or what is older would come later
    write(window_.desktop().defaults(), valuesOf(window_));
}

void WindowMemory::rememberInBackground()
{
    if (!writing_.isDone())
        return;
    auto& desktop = window_.desktop();
    writing_ = runInBackground(desktop.mainThread(),
        [&defaults = desktop.defaults(), values = valuesOf(window_)](
            const Task::Context&) { write(defaults, values); });
}

void WindowMemory::restore()
{
    auto& window = window_;
    auto& desktop = window.desktop();
    const auto value = [&](const std::string& key) { return desktop.defaults().get(key).value_or(""); };
    const auto bytes
        = [&](const char* key) { return QByteArray::fromBase64(QByteArray::fromStdString(value(key))); };
    if (!window.restoreGeometry(bytes(geometryKey)))
        showFirst(window);
    window.restoreSides(bytes(sidesKey));
    const auto text = value(thumbSizeKey);
    int size = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), size).ec == std::errc())
        window.grid().setThumbnailSize(size);
    const auto& catalog = desktop.store().catalog();
    window.sidebar().restoreOpenLines(value(keyOfLibrary(sidebarKeys, catalog)));
    desktop.attempt(
        [&] { restoreView(desktop.store(), viewMemoryOf(value(keyOfLibrary(viewKeys, catalog)))); });
}

} // namespace korvo
