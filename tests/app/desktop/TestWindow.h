#pragma once

#include "app/desktop/MainWindow.h"
#include "platform/FileDefaults.h"
#include "tests/support/TestLibrary.h"

#include <QTest>

#include <gtest/gtest.h>

namespace korvo {

/// The window over a library of photos a.jpg, b.jpg… whose files are not there, shown without a display.
struct TestWindow : TestLibrary {
    explicit TestWindow(int photos, std::chrono::milliseconds patience = LibraryStore::untilItIsRead)
    {
        for (int i = 0; i < photos; ++i)
            photo(std::string(1, static_cast<char>('a' + i)) + ".jpg");
        desktop = std::make_unique<Desktop>(main, std::move(catalog), clock, defaults, patience);
        window = std::make_unique<MainWindow>(*desktop);
        window->resize(1000, 700);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    LibraryStore& store() { return desktop->store(); }
    const PhotoItem& listed(PhotoID id) { return *store().list().find(id); }
    /// Presses a key where the focus is.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget* const focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : window.get(), key, modifiers);
    }

    QtMainThread main;
    FileDefaults defaults{folder / "defaults"};
    std::unique_ptr<Desktop> desktop;
    std::unique_ptr<MainWindow> window;
};

} // namespace korvo
