#include "app/desktop/grid/GridView.h"
#include "app/desktop/photos/FileThumbnails.h"
#include "app/desktop/photos/PhotoDrag.h"
#include "app/desktop/sidebar/Locating.h"
#include "app/desktop/viewer/ComparePage.h"
#include "app/desktop/viewer/Filmstrip.h"
#include "app/desktop/viewer/MarksBar.h"
#include "app/desktop/viewer/SurveyPage.h"
#include "app/view/Marking.h"
#include "app/view/SearchFilter.h"
#include "catalog/store/LibraryActions.h"
#include "tests/app/desktop/PhotoWindow.h"
#include "tests/support/StoreActions.h"

#include <QContextMenuEvent>
#include <QDialog>
#include <QDrag>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QWindow>

#include <gtest/gtest.h>

namespace korvo {

TEST(Viewer, tellsWhereThePhotoIsInTheListAlsoWhenThatChanges)
{
    PhotoWindow t;
    for (const auto* const name : {"a.png", "b.png", "c.png"})
        t.addFile(name);
    t.store().select({1});
    t.desktop->browser().setMode(ViewMode::viewer);
    const auto isTold = [&](const char* place) {
        const auto bars = t.parts<MarksBar>();
        return std::ranges::any_of(
            bars, [&](const MarksBar* bar) { return bar->isVisible() && bar->note().endsWith(place); });
    };
    EXPECT_TRUE(isTold("1 of 3"));
    setRating(t.store(), std::vector<PhotoID>{3}, -1);
    EXPECT_TRUE(isTold("1 of 2"));
}

TEST(Viewer, keysZoomAndMoveAPhotoAbout)
{
    PhotoWindow t;
    t.add("large.png", 100, 3000, 2000);
    t.add("next.png");
    t.store().select({1});
    t.open(ViewMode::viewer);
    ASSERT_TRUE(t.isDrawn());
    const auto fit = t.view().zoom().scale();
    t.press(Qt::Key_Plus);
    EXPECT_GT(t.view().zoom().scale(), fit);
    t.press(Qt::Key_Minus);
    EXPECT_TRUE(t.view().zoom().isFit());
    t.press(Qt::Key_Z);
    const auto before = t.view().zoom().origin();
    t.press(Qt::Key_Right, Qt::ShiftModifier);
    t.press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_LT(t.view().zoom().origin().x, before.x);
    EXPECT_LT(t.view().zoom().origin().y, before.y);
    EXPECT_EQ(t.desktop->browser().current(), 1);
    t.press(Qt::Key_Right);
    EXPECT_EQ(t.desktop->browser().current(), 2);
}

TEST(Viewer, showsThePhotoWholeAtAllItsPixelsAndAsItWas)
{
    PhotoWindow t;
    const auto photo = t.add("a.png", 100, 3000, 2000);
    setEdits(t.store(), std::vector<PhotoID>{photo}, {.exposure = 1});
    t.store().select({photo});
    t.open(ViewMode::viewer);
    ASSERT_TRUE(t.isDrawn());
    const int brighter = t.grey([](int value) { return value > 130; });
    EXPECT_GT(brighter, 130);
    EXPECT_EQ(t.view().feed().screen().full, QSize(3000, 2000));
    EXPECT_LT(t.view().zoom().scale(), 0.5);

    t.press(Qt::Key_Z);
    EXPECT_EQ(t.view().zoom().scale(), 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !t.view().feed().full().image.isNull(); }, wait));
    EXPECT_EQ(t.view().feed().full().image.size(), QSize(3000, 2000));
    t.press(Qt::Key_Space);
    EXPECT_TRUE(t.view().zoom().isFit());

    t.press(Qt::Key_M);
    EXPECT_EQ(t.grey(100), 100);
    t.press(Qt::Key_M);
    EXPECT_EQ(t.grey(brighter), brighter);
}

TEST(Viewer, keysStepAndActOnThePhotoShownAlone)
{
    PhotoWindow t;
    const std::vector photos{t.add("a.png", 50), t.add("b.png", 150), t.add("c.png", 200)};
    t.store().select(photos);
    t.desktop->browser().setCurrent(photos[0]);
    t.open(ViewMode::viewer);
    EXPECT_EQ(t.grey(50), 50);
    t.press(Qt::Key_Right);
    EXPECT_EQ(t.grey(150), 150);
    t.press(Qt::Key_BracketRight, Qt::ControlModifier);
    EXPECT_EQ(t.listed(photos[1]).edits(), (PhotoEdits{.rotation = 1}));
    EXPECT_FALSE(t.listed(photos[0]).hasEdits() || t.listed(photos[2]).hasEdits());
    EXPECT_TRUE(QTest::qWaitFor([&] { return t.view().feed().screen().full == QSize(400, 600); }, wait));

    t.press(Qt::Key_C); // the first of the others that are selected is at its side
    t.press(Qt::Key_End);
    EXPECT_EQ(t.desktop->browser().current(), photos[2]);
    EXPECT_EQ(t.grey(200), 200);
    for (auto* const page : t.parts<ComparePage>())
        EXPECT_EQ(page->panes().front()->photo(), photos[1]) << "the left one stays";
    t.press(Qt::Key_Left);
    EXPECT_EQ(t.desktop->browser().current(), photos[0]) << "and is passed over";
    t.press(Qt::Key_End);
    t.press(Qt::Key_N);
    EXPECT_EQ(t.grey(200), 200);
    for (auto* const page : t.parts<SurveyPage>())
        EXPECT_EQ(page->panes().size(), 3U);
    t.press(Qt::Key_Left);
    EXPECT_EQ(t.desktop->browser().current(), photos[1]);
    EXPECT_EQ(t.store().selection(), photos);
}

TEST(Viewer, theLoupeIsOverTheSamePlaceOfBothPhotosAndGoesWithThem)
{
    PhotoWindow t;
    t.add("a.png", 50, 600, 400);
    t.add("b.png", 150, 300, 200);
    auto& loupe = *t.window->commands().action(Command::loupe);
    EXPECT_FALSE(loupe.isEnabled());
    t.store().select({1});
    t.open(ViewMode::compare);
    const auto panes = dynamic_cast<ComparePage&>(*t.window->centre()).panes();
    PhotoView &left = panes.front()->view(), &right = panes.back()->view();
    for (PhotoView* const view : {&left, &right})
        ASSERT_TRUE(QTest::qWaitFor([&] { return !view->feed().screen().full.isEmpty(); }, wait));
    t.press(Qt::Key_QuoteLeft);
    EXPECT_TRUE(loupe.isChecked());
    const auto beside = left.loupePoint(), here = right.loupePoint();
    ASSERT_TRUE(here && beside) << "without a mouse, in the middle";
    t.press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_GT(right.loupePoint()->x(), here->x());
    EXPECT_GT(left.loupePoint()->x(), beside->x());
    const QPointF middle = left.rect().center() + QPointF(0.5, 0.5);
    for (const QPointF off : {QPointF(), QPointF(60, 40)}) {
        const QPointF at = middle + off;
        QMouseEvent move(
            QEvent::MouseMove, at, left.mapToGlobal(at), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&left, &move);
        const auto there = right.loupePoint();
        ASSERT_TRUE(there);
        const double smaller = 0.5 * right.zoom().scale() / left.zoom().scale(); // in points
        const QPointF expected = right.rect().center() + QPointF(0.5, 0.5) + off * smaller;
        EXPECT_LT((*there - expected).manhattanLength(), 3) << off.x();
    }
    t.press(Qt::Key_G);
    EXPECT_FALSE(loupe.isEnabled() || loupe.isChecked());
    EXPECT_FALSE(left.loupePoint());
}

TEST(Viewer, keysGoOnInASurveyWhoseClickedPhotoLeft)
{
    PhotoWindow t;
    for (const char* name : {"a.png", "b.png", "c.png"})
        t.add(name);
    t.store().select({1, 2, 3});
    t.press(Qt::Key_N);
    auto* const last = t.parts<SurveyPage>().front()->panes().back();
    QTest::mouseClick(&last->view(), Qt::LeftButton);
    ASSERT_EQ(t.desktop->browser().current(), 3);
    t.press(Qt::Key_X);
    ASSERT_EQ(t.desktop->browser().current(), 2);
    ASSERT_TRUE(t.window->focusWidget());
    QTest::keyClick(t.window->focusWidget(), Qt::Key_Left);
    EXPECT_EQ(t.desktop->browser().current(), 1);
}

TEST(Viewer, comparesAPhotoWithTheRenderItCameWith)
{
    PhotoWindow t;
    const auto first = t.add("a.png", 50), second = t.add("b.png", 150);
    const auto other = t.add("preview.png", 200, 300, 200);
    t.store().catalog().setReferencePath(first, (t.folder / "preview.png").string());
    t.store().reload();
    t.store().select({first});
    t.open(ViewMode::compare);
    const auto panes = dynamic_cast<ComparePage&>(*t.window->centre()).panes();
    PhotoView& left = panes.front()->view();
    const auto greyOfLeft = [&] { return left.grab().toImage().pixelColor(left.rect().center()).green(); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return greyOfLeft() == 200; }, wait));
    EXPECT_EQ(t.grey(50), 50);
    EXPECT_TRUE(QTest::qWaitFor([&] { return left.zoom().scale() == t.view().zoom().scale(); }, wait))
        << "as large as the photo";
    t.press(Qt::Key_Right);
    EXPECT_EQ(t.desktop->browser().current(), second);
    EXPECT_FALSE(left.feed().item()) << "which has none";
    t.press(Qt::Key_G);
    t.store().select({first, other});
    t.open(ViewMode::compare);
    EXPECT_EQ(panes.front()->photo(), first) << "two that are chosen";
}

TEST(FileThumbnails, followTheScreenTheyAreOn)
{
    PhotoWindow t;
    t.add("a.png");
    FileThumbnails pictures(t.desktop->pictures(), 50, [] {});
    const auto side = [&](double ratio) { return pictures.picture(t.folder / "a.png", ratio).width(); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return side(1) == 50; }, wait));
    EXPECT_EQ(side(2), 50) << "till the finer one is there";
    EXPECT_TRUE(QTest::qWaitFor([&] { return side(2) == 100; }, wait));
}

TEST(Viewer, aFileThatCannotBeShownSaysWhyAndStaysRatable)
{
    PhotoWindow t;
    t.folder.write("broken.jpg", "no picture");
    t.addFile("broken.jpg");
    const auto gone = t.addFile("gone.jpg");
    t.store().select({1});
    t.open(ViewMode::viewer);
    ASSERT_TRUE(QTest::qWaitFor([&] { return t.view().feed().fault().contains("broken.jpg"); }, wait));
    t.press(Qt::Key_Right);
    ASSERT_TRUE(QTest::qWaitFor([&] { return t.view().feed().fault().contains("gone.jpg"); }, wait));
    EXPECT_TRUE(t.view().feed().fault().contains("Locate Folder…")) << t.view().feed().fault().toStdString();
    t.press(Qt::Key_3);
    EXPECT_EQ(t.listed(gone).rating, 3);
    EXPECT_EQ(t.view().accessibleName(), "gone.jpg, 3 stars, the file is missing or cannot be read");
}

TEST(Survey, whatIsDraggedOutOfItOutlivesItsPane)
{
    PhotoWindow t;
    for (const char* name : {"a.png", "b.png", "c.png"})
        t.add(name);
    t.store().select({1, 2, 3});
    t.desktop->browser().setMode(ViewMode::survey);
    auto* const page = t.parts<SurveyPage>().front();
    auto& view = page->panes().back()->view();
    const QPoint from = view.rect().center();
    QTest::mousePress(&view, Qt::LeftButton, {}, from);
    const QPointF to = from + QPointF(50, 0);
    QMouseEvent move(
        QEvent::MouseMove, to, view.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &move); // without a display it is dropped at once
    const auto* const drag = t.window->findChild<QDrag*>();
    ASSERT_TRUE(drag);
    EXPECT_EQ(draggedPhotos(*drag->mimeData()), std::vector<PhotoID>{3});
    removePhotos(t.store(), only(3)); // as another process may, while it is dragged
    EXPECT_EQ(page->panes().size(), 2U);
    EXPECT_TRUE(t.window->findChild<QDrag*>()) << "or it would never end";
}

TEST(Viewer, aPhotoIsShownAgainOnceItsFolderIsLocated)
{
    PhotoWindow t;
    const auto folder = t.store().catalog().addFolder((t.folder / "before").string(), 1).id;
    t.add("before/a.png", 100);
    t.store().select({1});
    t.open(ViewMode::viewer);
    ASSERT_EQ(t.grey(100), 100);
    t.desktop->browser().setMode(ViewMode::grid);
    std::filesystem::rename(t.folder / "before", t.folder / "after");
    t.open(ViewMode::viewer);
    const auto isMissed = [&] {
        t.desktop->decoded().lookForChanges(); // again: what was still being decoded is kept after a look
        return !t.view().feed().fault().isEmpty();
    };
    ASSERT_TRUE(QTest::qWaitFor(isMissed, wait));
    const auto locate = [&](const char* name) {
        locateInBackground(*t.desktop, folder, t.folder / name);
        return QTest::qWaitFor([&] { return !t.desktop->isBusy(); }, wait);
    };
    ASSERT_TRUE(locate("Library"));
    EXPECT_TRUE(t.visibleButton("Close")) << "none of the photos is there";
    t.visibleButton("Close")->click();
    EXPECT_FALSE(t.store().undoStep());
    ASSERT_TRUE(locate("after"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return t.view().feed().fault().isEmpty(); }, wait));
    t.window->commands().run(Command::undo);
    EXPECT_TRUE(QTest::qWaitFor([&] { return t.listed(1).path() == t.folder / "before/a.png"; }, wait));
    t.window->commands().run(Command::redo);
    EXPECT_TRUE(QTest::qWaitFor([&] { return t.listed(1).path() == t.folder / "after/a.png"; }, wait));
}

TEST(Viewer, theFullScreenPhotoTellsOfErrorsAndOffersUndo)
{
    TestWindow t(1);
    t.store().arrange({}, std::nullopt); // rejected photos stay in sight
    t.press(Qt::Key_F);
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() != t.window.get(); }));
    const auto* const screen = QApplication::activeWindow();
    EXPECT_FALSE(t.visibleButton("Close", screen));
    t.window->commands().run(Command::remove);
    ASSERT_TRUE(t.visibleButton("Undo", screen));
    t.visibleButton("Undo", screen)->click();
    EXPECT_EQ(t.listed(1).rating, 0);
    t.desktop->fail(std::runtime_error("It went wrong"));
    auto* const close = t.visibleButton("Close", screen);
    ASSERT_TRUE(close);
    EXPECT_TRUE(screen->rect().contains(close->mapTo(screen, close->rect().center())));
    close->click();
    EXPECT_FALSE(t.visibleButton("Close")) << "what was read there is read here";
    t.window->commands().run(Command::keys);
    const auto* const dialog = t.window->findChild<QDialog*>();
    ASSERT_TRUE(dialog && dialog->isVisible());
    EXPECT_EQ(dialog->windowHandle()->transientParent(), screen->windowHandle()) << "comes before the photo";
    EXPECT_EQ(t.desktop->browser().mode(), ViewMode::fullScreen);
    t.window->activateWindow(); // as a second start does
    EXPECT_TRUE(QTest::qWaitFor([&] { return t.desktop->browser().mode() == ViewMode::viewer; }));
}

TEST(Viewer, theMenuOfAPhotoActsOnIt)
{
    TestWindow t(3);
    t.store().select({1});
    t.desktop->browser().setMode(ViewMode::compare);
    EXPECT_EQ(t.desktop->browser().current(), 2);
    const auto chooseFlag = [&](PhotoView& on) {
        QTimer::singleShot(0, [&] {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_TRUE(menu);
            menu->setActiveAction(t.window->commands().action(Command::toggleFlag));
            QTest::keyClick(menu, Qt::Key_Return);
        });
        const QPoint middle = on.rect().center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, middle, on.mapToGlobal(middle));
        QApplication::sendEvent(&on, &event);
    };
    for (auto* const pane : dynamic_cast<ComparePage&>(*t.window->centre()).panes())
        chooseFlag(pane->view());
    EXPECT_TRUE(t.listed(1).flagged && t.listed(2).flagged && !t.listed(3).flagged);
    EXPECT_EQ(t.desktop->browser().current(), 2);
}

TEST(Viewer, marksCanBeClickedWhereverTheyAre)
{
    TestWindow t(2);
    t.store().arrange({}, std::nullopt); // rejected photos stay in sight
    const auto clickedCross = [&](QWidget* on, QPoint at) {
        setMark(t.store(), std::vector<PhotoID>{1}, Mark::reject);
        QTest::mouseClick(on, Qt::LeftButton, {}, at);
        return std::pair(t.listed(1).rating, t.listed(1).flagged);
    };
    constexpr auto neither = std::pair(0, false);
    auto* const grid = &t.window->grid();
    const CellGeometry geometry(grid->thumbnailSize(), grid->font());
    const GridLayout layout{grid->viewport()->width(), geometry.cell(), 2};
    EXPECT_EQ(
        clickedCross(grid->viewport(), geometry.marks(layout.rect(0).topLeft()).flag.center()), neither);
    t.store().select({1});
    t.desktop->browser().setMode(ViewMode::viewer);
    for (auto* const widget : t.window->findChildren<QWidget*>()) {
        if (!widget->isVisible())
            continue;
        if (auto* const bar = dynamic_cast<MarksBar*>(widget)) {
            const int side = bar->fontMetrics().height();
            const auto line = marksInRow({10, 0, bar->width(), bar->height()}, side);
            EXPECT_EQ(clickedCross(bar, line.flag.center()), neither);
        } else if (auto* const strip = dynamic_cast<Filmstrip*>(widget)) {
            EXPECT_EQ(clickedCross(strip->viewport(), {80, 95}), neither);
            QTest::mouseClick(strip->viewport(), Qt::LeftButton, {}, {92 + 10, 95}); // of the second one
            EXPECT_EQ(t.listed(2).rating, 1);
        }
    }
    EXPECT_EQ(t.desktop->browser().current(), 1) << "the photo shown stays";
}

TEST(Viewer, aLabelChosenBelowAPhotoMayTakeItOutOfTheSurvey)
{
    TestWindow t(3);
    const std::vector<PhotoID> all{1, 2, 3};
    setLabel(t.store(), all, PhotoLabel::red);
    t.store().narrow(rulesOf({.labels = {PhotoLabel::red}}));
    t.store().select(all);
    t.desktop->browser().setMode(ViewMode::survey);
    MarksBar* last = nullptr;
    for (auto* const widget : t.window->findChildren<QWidget*>())
        if (auto* const bar = dynamic_cast<MarksBar*>(widget); bar && bar->isVisible())
            last = bar;
    ASSERT_TRUE(last);
    const int side = last->fontMetrics().height();
    QTest::mouseClick(last, Qt::LeftButton, {}, QPoint(24 + 6 * side + side / 2, last->height() / 2));
    const QPointer<QWidget> menu = QApplication::activePopupWidget();
    ASSERT_TRUE(menu);
    QTest::keyClick(menu, Qt::Key_Up); // the last label
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(t.store().list().shown().size(), 2U);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !menu; }));
}

} // namespace korvo
