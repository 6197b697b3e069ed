#pragma once

#include "app/desktop/adjust/AdjustPanel.h"
#include "app/desktop/viewer/PhotoPage.h"
#include "tests/app/desktop/TestWindow.h"

#include <QSlider>
#include <QTabWidget>

namespace korvo {

inline constexpr int wait = 10'000; // ms

/// A window over photos of one grey each.
struct PhotoWindow : TestWindow {
    explicit PhotoWindow(std::chrono::milliseconds patience = LibraryStore::untilItIsRead)
        : TestWindow(0, patience)
    { }

    PhotoID add(const std::string& name, int grey = 100, int width = 600, int height = 400)
    {
        const auto path = folder / name;
        const auto writer = pictureWriter(PictureFormat::png, {width, height}, 0, path);
        std::vector<std::uint8_t> row(4 * static_cast<std::size_t>(width), static_cast<std::uint8_t>(grey));
        for (std::size_t i = 3; i < row.size(); i += 4)
            row[i] = 255;
        for (int y = 0; y < height; ++y)
            writer->write(row.data());
        const auto bytes = writer->finish();
        folder.write(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        return addFile(name);
    }

    PhotoID addFile(const std::string& name)
    {
        const NewPhoto photo{.path = (folder / name).string()};
        const auto id = store().catalog().addPhotos(std::span(&photo, 1)).front().id;
        store().reload();
        return id;
    }

    /// Every widget of that class, shown or not.
    template <typename T>
    std::vector<T*> parts()
    {
        std::vector<T*> found;
        for (auto* const widget : window->findChildren<QWidget*>())
            if (auto* const part = dynamic_cast<T*>(widget))
                found.push_back(part);
        return found;
    }

    /// The one on show that commands act on.
    PhotoView& view()
    {
        for (auto* const page : parts<PhotoPage>())
            if (page->mode() == desktop->browser().mode() && page->active())
                return page->active()->view();
        throw std::logic_error("no photo is shown");
    }

    void open(ViewMode mode)
    {
        desktop->browser().setMode(mode);
        view().setFocus();
    }

    bool isDrawn()
    {
        return QTest::qWaitFor([&] { return view().feed().item() && !view().feed().isLoading(); }, wait);
    }
    /// The grey in the middle of the view, once it is as wanted or time is up.
    int grey(const std::function<bool(int)>& isWanted)
    {
        int value = -1;
        (void)QTest::qWaitFor(
            [&] {
                const auto shot = view().grab().toImage();
                value = shot.pixelColor(shot.width() / 2, shot.height() / 2).green();
                return isWanted(value);
            },
            wait);
        return value;
    }
    int grey(int wanted)
    {
        return grey([wanted](int value) { return value == wanted; });
    }

    QSlider& slider(const QString& name)
    {
        for (auto* const tabs : parts<QTabWidget>())
            tabs->setCurrentWidget(parts<AdjustPanel>().front());
        for (auto* const bar : parts<QSlider>())
            if (bar->accessibleName() == name)
                return *bar;
        throw std::logic_error("no such slider");
    }
};

} // namespace korvo
