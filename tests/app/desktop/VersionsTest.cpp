#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"
#include "tests/app/desktop/TestWindow.h"
#include "tests/support/ListedPhotos.h"
#include "tests/support/StoreActions.h"

#include <QListWidget>
#include <QPushButton>

namespace korvo {

namespace {

using IDs = std::vector<PhotoID>;

IDs shown(TestWindow& t)
{
    return shownIDs(t.store().list());
}

/// The list of versions in the Info tab once it has so many rows.
QListWidget& versionRows(TestWindow& t, int rows)
{
    auto* const list = t.window->findChild<QListWidget*>("versions");
    EXPECT_TRUE(QTest::qWaitFor([&] { return list->count() == rows; })) << list->count();
    return *list;
}

} // namespace

TEST(Versions, aNewOneIsWorkedOnAtOnceAndEscapeGoesBack)
{
    for (const auto mode : {ViewMode::grid, ViewMode::viewer}) {
        TestWindow t(3);
        t.store().select({2, 3});
        t.store().select({2});
        t.desktop->browser().setMode(mode);
        t.press(Qt::Key_Apostrophe, Qt::ControlModifier);
        EXPECT_EQ(shown(t), (IDs{2, 4}));
        EXPECT_EQ(t.desktop->browser().targets(), IDs{4});
        EXPECT_EQ(t.desktop->browser().mode(), mode);
        t.press(Qt::Key_5);
        EXPECT_EQ(t.listed(4).rating, 5);
        EXPECT_EQ(t.listed(2).rating, 0);
        t.press(Qt::Key_Escape);
        if (mode == ViewMode::viewer)
            t.press(Qt::Key_Escape);
        EXPECT_EQ(shown(t), (IDs{1, 2, 3}));
        EXPECT_EQ(t.store().selection(), IDs{2});
    }
}

TEST(Versions, inAnAlbumANewOneIsSelectedBesideItsPhoto)
{
    TestWindow t(2);
    const auto album = createAlbum(t.store(), "album", std::nullopt);
    addToAlbum(t.store(), album, IDs{1, 2});
    t.store().chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    t.store().select({1});
    t.press(Qt::Key_Apostrophe, Qt::ControlModifier);
    EXPECT_EQ(shown(t), (IDs{1, 3, 2}));
    EXPECT_EQ(t.desktop->browser().targets(), IDs{3});
}

TEST(Versions, nothingIsSelectedThatTheFilterHides)
{
    TestWindow t(2);
    createVersions(t.store(), IDs{1}, 1);
    t.store().select({1});
    t.desktop->browser().showVersions(3);
    setRating(t.store(), IDs{1}, -1);
    t.desktop->browser().leaveVersions();
    EXPECT_EQ(t.store().selection(), IDs{2});
    setRating(t.store(), IDs{3}, -1);
    t.desktop->browser().showVersions(3);
    EXPECT_EQ(t.store().selection(), IDs());
}

TEST(Versions, leavingThemForACollapsedStackSelectsItsPick)
{
    TestWindow t(2);
    const auto stack = createStack(t.store(), IDs{1, 2}, 1);
    setStackState(t.store(), stack, StackState::expanded);
    t.store().select({2});
    t.desktop->browser().showVersions(2);
    setStackState(t.store(), stack, StackState::collapsed);
    t.desktop->browser().leaveVersions();
    EXPECT_EQ(t.store().selection(), IDs{1});
}

TEST(Versions, theInfoTabListsOpensAndRemovesThem)
{
    TestWindow t(2);
    createVersions(t.store(), IDs{1, 1}, 1);
    t.store().select({2});
    versionRows(t, 0);
    t.store().select({1});
    auto& rows = versionRows(t, 3);
    EXPECT_EQ(rows.item(2)->text(), "Version 3");
    EXPECT_EQ(rows.currentRow(), 0);
    rows.setFocus();
    t.press(Qt::Key_Down);
    t.press(Qt::Key_Return);
    EXPECT_EQ(t.desktop->browser().targets(), IDs{3});
    EXPECT_EQ(shown(t), (IDs{1, 3, 4}));
    renameVersion(t.store(), 4, "Black and White");
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return rows.count() == 3 && rows.item(2)->text() == "Black and White"; }));
    EXPECT_EQ(rows.currentRow(), 1);
    EXPECT_EQ(QApplication::focusWidget(), &rows) << "not a field, which would take the next mark for a text";
    for (auto* const button : t.window->findChildren<QPushButton*>())
        if (button->text() == "Remove")
            button->click();
    versionRows(t, 2);
    EXPECT_EQ(shown(t), (IDs{1, 4}));
    t.store().undo();
    versionRows(t, 3);
    rows.setFocus();
    removeVersion(t.store(), 4);
    removeVersion(t.store(), 3);
    versionRows(t, 0);
    EXPECT_EQ(QApplication::focusWidget(), t.window->centre());
}

} // namespace korvo
