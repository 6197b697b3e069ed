#pragma once

#include "app/desktop/window/MainWindow.h"
#include "platform/FileDefaults.h"
#include "tests/support/TestLibrary.h"

#include <QMessageBox>
#include <QStatusBar>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

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

    /// Adds very many photos without files, and selects them.
    std::vector<PhotoID> selectMany()
    {
        std::vector<NewPhoto> photos;
        for (int i = 0; i < 2500; ++i)
            photos.push_back({.path = "/many/" + std::to_string(i) + ".jpg"});
        std::vector<PhotoID> ids;
        for (const auto& added : store().catalog().addPhotos(photos))
            ids.push_back(added.id);
        store().reload();
        settleStore();
        store().select(ids);
        return ids;
    }
    void settleStore()
    {
        EXPECT_TRUE(QTest::qWaitFor([&] { return !store().longStep() && !store().isReading(); }, 10'000));
    }
    /// Makes steps of very many photos fail, in a way that may pass.
    void hideCatalog() { std::filesystem::rename(catalogFile(), catalogFile().string() + ".hidden"); }
    void bringCatalogBack() { std::filesystem::rename(catalogFile().string() + ".hidden", catalogFile()); }
    std::filesystem::path catalogFile() { return store().catalog().libraryURL() / "catalog.sqlite"; }

    /// Begins a step of very many photos that does not end before that is set.
    std::shared_ptr<std::atomic<bool>> beginStep(const std::function<void(Catalog&)>& change
        = [](Catalog& changed) { changed.setLabel(only(1), PhotoLabel::red); })
    {
        auto mayEnd = std::make_shared<std::atomic<bool>>(false);
        const auto waiting = [mayEnd, change](Catalog& changed) {
            while (!*mayEnd)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            change(changed);
        };
        store().perform("Long Step", waiting, 5000);
        EXPECT_TRUE(store().longStep());
        return mayEnd;
    }

    /// What is asked while a command runs, title and details; nothing if it asks nothing. The answer is no.
    QString refused(Command command)
    {
        return refused([&] { window->commands().run(command); });
    }
    static QString refused(const std::function<void()>& action)
    {
        QString asked;
        QTimer::singleShot(0, [&] {
            if (auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                asked = (box->text() + "\n" + box->informativeText()).trimmed();
                box->reject();
            }
        });
        action();
        return asked;
    }
    /// A button of the status line, or of another place.
    QToolButton* visibleButton(const QString& text, const QWidget* place = nullptr) const
    {
        for (auto* const button : (place ? place : window->statusBar())->findChildren<QToolButton*>())
            if (button->isVisible() && button->text() == text)
                return button;
        return nullptr;
    }

    QtMainThread main;
    FileDefaults defaults{folder / "defaults"};
    std::unique_ptr<Desktop> desktop;
    std::unique_ptr<MainWindow> window;
};

} // namespace korvo
