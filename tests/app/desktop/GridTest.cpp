#include "app/AlbumOrder.h"
#include "app/SearchFilter.h"
#include "app/Stacking.h"
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

TEST(SearchFilter, leavesWhatHasAllThatIsAskedFor)
{
    TestWindow t(0);
    auto& catalog = t.store().catalog();
    const auto add = [&](const char* name, const char* title, int rating, PhotoLabel label) {
        const NewPhoto photo{
            .folderID = {}, .path = std::string("/photos/") + name, .metadata = {.title = title}};
        const auto id = catalog.addPhotos({{photo}})[0].id;
        catalog.setRating(only(id), rating);
        catalog.setLabel(only(id), label);
    };
    add("1.jpg", "Sea and sand", 3, PhotoLabel::red);
    add("2.mov", "Sea", 5, PhotoLabel::blue);
    add("sea.jpg", "", 0, PhotoLabel::none);
    t.store().reload();
    struct Case {
        SearchFilter filter;
        IDs left;
    };
    for (const auto& [filter, left] : {
             Case{{}, {1, 2, 3}},
             {{.words = "SEA"}, {1, 2, 3}},
             {{.words = " sand  sea "}, {1}},
             {{.words = "mountain"}, {}},
             {{.leastStars = 3}, {1, 2}},
             {{.words = "sea", .leastStars = 4, .kind = SearchFilter::Kind::videos}, {2}},
             {{.labels = {PhotoLabel::red, PhotoLabel::blue}, .kind = SearchFilter::Kind::photos}, {1}},
             {{.flaggedOnly = true}, {}},
         }) {
        t.store().narrow(rulesOf(filter));
        auto shown = shownIDs(t.store().list());
        std::sort(shown.begin(), shown.end());
        EXPECT_EQ(shown, left) << filter.words << " " << filter.leastStars;
    }
}

TEST(AlbumOrder, movesWhatIsShownTogether)
{
    TestWindow t(5);
    auto& store = t.store();
    const auto album = createAlbum(store, "album", {});
    addToAlbum(store, album, IDs{1, 2, 3, 4, 5});
    placeInAlbum(store, IDs{5}, 0); // no album is shown
    store.chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    const auto order = [&] { return shownIDs(store.list()); };
    placeInAlbum(store, IDs{5, 3}, 0);
    EXPECT_EQ(order(), (IDs{3, 5, 1, 2, 4})) << "as they were shown";
    placeInAlbum(store, IDs{5, 1}, 2);
    EXPECT_EQ(order(), (IDs{3, 5, 1, 2, 4})) << "between themselves";
    store.select({5, 1});
    t.press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(order(), (IDs{3, 2, 5, 1, 4}));
    t.press(Qt::Key_Left, Qt::AltModifier);
    t.press(Qt::Key_Left, Qt::AltModifier);
    t.press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(order(), (IDs{5, 1, 3, 2, 4}));
    EXPECT_EQ(store.selection(), (IDs{5, 1}));
    store.arrange(SortKey::rating, std::nullopt);
    EXPECT_FALSE(t.window->commands().action(Command::moveLater)->isEnabled());
}

TEST(Stacking, movesBehindThePickAndTakesAlongWhatACollapsedStackHides)
{
    TestWindow t(6);
    auto& store = t.store();
    const auto order = [&] { return shownIDs(store.list()); };
    createStack(store, IDs{1, 2, 3}, 1);
    store.select({1});
    t.press(Qt::Key_S);
    EXPECT_EQ(order(), (IDs{1, 2, 3, 4, 5, 6}));
    store.select({2});
    for (int i = 0; i < 2; ++i) // the second time it is the last already
        t.press(Qt::Key_PageDown, Qt::AltModifier);
    EXPECT_EQ(order(), (IDs{1, 3, 2, 4, 5, 6}));
    EXPECT_EQ(store.selection(), IDs{2});
    for (int i = 0; i < 2; ++i)
        t.press(Qt::Key_PageUp, Qt::AltModifier);
    EXPECT_EQ(order(), (IDs{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(store.undoTitle(), "Move in Stack");
    store.undo();
    EXPECT_EQ(order(), (IDs{1, 3, 2, 4, 5, 6}));
    EXPECT_NE(stepInStack(store, 1, 1), "") << "the pick stays";
    t.press(Qt::Key_S);
    store.select({1, 5});
    t.press(Qt::Key_G, Qt::ControlModifier);
    EXPECT_EQ(order(), (IDs{1, 4, 6}));
    t.press(Qt::Key_S);
    EXPECT_EQ(order(), (IDs{1, 3, 2, 5, 4, 6}));
    t.press(Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(order(), (IDs{1, 2, 3, 4, 5, 6}));
}

TEST(GridView, aSweepBeyondTheEdgeScrollsAndKeepsWhatItPassed)
{
    TestWindow window(26);
    auto* const grid = gridOf(*window.window);
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
    auto* const grid = gridOf(*t.window);
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
