#include "app/desktop/grid/GridLayout.h"
#include "app/desktop/grid/GridView.h"
#include "app/desktop/photos/PhotoDrag.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"
#include "tests/app/desktop/TestWindow.h"
#include "tests/support/ListedPhotos.h"

#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>

namespace korvo {

using IDs = std::vector<PhotoID>;

TEST(GridLayout, findsEachOfAMillionCellsAgain)
{
    const GridLayout layout{1000, {180, 220}, 1'000'000};
    EXPECT_EQ(layout.columns(), 5);
    for (const std::size_t index : {0UL, 4UL, 5UL, 999'998UL, 999'999UL}) {
        const QRect cell = layout.rect(index);
        EXPECT_EQ(layout.indexAt(cell.center()), index);
        const auto [first, last] = layout.between(cell.top(), cell.bottom());
        EXPECT_TRUE(first <= index && index < last && last - first <= 5) << index;
    }
    EXPECT_EQ(layout.indexAt({2, 100}), std::nullopt) << "in the margin";
    EXPECT_EQ(layout.indexAt({500, layout.height()}), std::nullopt);
}

TEST(GridView, keysMoveWithinAnAlbumAndAStack)
{
    TestWindow t(6);
    auto& store = t.store();
    const auto order = [&] { return shownIDs(store.list()); };
    createStack(store, IDs{1, 2, 3}, 1);
    store.select({1});
    t.press(Qt::Key_S);
    store.select({2});
    t.press(Qt::Key_PageDown, Qt::AltModifier);
    EXPECT_EQ(order(), (IDs{1, 3, 2, 4, 5, 6}));
    EXPECT_EQ(store.selection(), IDs{2});
    t.press(Qt::Key_PageUp, Qt::AltModifier);
    EXPECT_EQ(store.undoTitle(), "Move in Stack");
    store.select({1, 5});
    t.press(Qt::Key_G, Qt::ControlModifier);
    EXPECT_EQ(store.undoTitle(), "Stack");
    t.press(Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(order(), (IDs{1, 2, 3, 4, 5, 6}));

    const auto album = createAlbum(store, "album", {});
    addToAlbum(store, album, IDs{4, 5, 6});
    store.chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    store.select({4});
    t.press(Qt::Key_Right, Qt::AltModifier);
    t.press(Qt::Key_Right, Qt::AltModifier);
    t.press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(order(), (IDs{5, 4, 6}));
    EXPECT_EQ(store.selection(), IDs{4});
    store.arrange(SortKey::rating, std::nullopt);
    EXPECT_FALSE(t.window->commands().action(Command::moveLater)->isEnabled());
}

TEST(GridView, aSweepBeyondTheEdgeScrollsAndKeepsWhatItPassed)
{
    TestWindow window(26);
    auto* const grid = &window.window->grid();
    auto* const bar = grid->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    const QPoint from(2, 2), to(grid->viewport()->width() - 2, grid->viewport()->height() + 60);
    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, from);
    QMouseEvent move(
        QEvent::MouseMove, to, grid->viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(grid->viewport(), &move);
    EXPECT_LT(window.store().selection().size(), 26U);
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->value() == bar->maximum(); }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.store().selection().size() == 26; }));
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, to);
    EXPECT_EQ(window.store().selection().size(), 26U);
}

TEST(GridView, aDropPutsPhotosWhereTheLineIsAndASweepEndsWithTheGrid)
{
    TestWindow t(4);
    const auto album = createAlbum(t.store(), "album", {});
    addToAlbum(t.store(), album, IDs{1, 2, 3, 4});
    auto* const grid = &t.window->grid();
    const auto drop = [&](PhotoID photo, QPoint at) {
        const std::vector dragged{t.store().list().find(photo)};
        const std::unique_ptr<QMimeData> owned(dragData(dragged));
        QMimeData* const data = owned.get();
        QDragEnterEvent enter(at, Qt::CopyAction, data, Qt::LeftButton, {});
        QApplication::sendEvent(grid->viewport(), &enter);
        QDropEvent event(at, Qt::CopyAction, data, Qt::LeftButton, {});
        if (enter.isAccepted())
            QApplication::sendEvent(grid->viewport(), &event);
        return enter.isAccepted();
    };
    EXPECT_TRUE(grid->viewport()->acceptDrops());
    EXPECT_FALSE(drop(4, {20, 20})) << "no album";
    t.store().chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    EXPECT_TRUE(drop(4, {20, 20}));
    EXPECT_EQ(shownIDs(t.store().list()), (IDs{4, 1, 2, 3}));
    EXPECT_TRUE(drop(4, {grid->viewport()->width() - 5, grid->viewport()->height() - 5}));
    EXPECT_EQ(shownIDs(t.store().list()), (IDs{1, 2, 3, 4}));
    EXPECT_TRUE(drop(1, {2, grid->viewport()->height() - 5})) << "below all of them";
    EXPECT_EQ(shownIDs(t.store().list()), (IDs{2, 3, 4, 1}));

    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, {2, 2});
    t.press(Qt::Key_E);
    t.press(Qt::Key_G);
    t.store().select({});
    QMouseEvent move(QEvent::MouseMove, QPointF(400, 400), grid->viewport()->mapToGlobal(QPointF(400, 400)),
        Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(grid->viewport(), &move);
    EXPECT_TRUE(t.store().selection().empty());
}

} // namespace korvo
