#include "app/SearchFilter.h"
#include "app/SidebarTree.h"
#include "app/ViewMemory.h"
#include "app/desktop/Instance.h"
#include "app/desktop/Texts.h"
#include "app/desktop/WindowMemory.h"
#include "app/desktop/grid/GridLayout.h"
#include "app/desktop/grid/GridView.h"
#include "tests/app/desktop/TestWindow.h"
#include "tests/support/ListedPhotos.h"

#include <QDialog>
#include <QLabel>
#include <QMimeData>
#include <QScrollBar>
#include <QStatusBar>
#include <QToolButton>

namespace korvo {

using IDs = std::vector<PhotoID>;

namespace {

/// What the status line shows, and its buttons.
bool shows(const TestWindow& t, const char* text)
{
    for (const auto* const label : t.window->statusBar()->findChildren<QLabel*>())
        if (label->isVisible() && label->text() == text)
            return true;
    return false;
}

QToolButton* visibleButton(const TestWindow& t, const QString& text)
{
    for (auto* const button : t.window->statusBar()->findChildren<QToolButton*>())
        if (button->isVisible() && button->text() == text)
            return button;
    return nullptr;
}

} // namespace

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

TEST(SidebarTree, nestsAlbumsAndTakesPhotosAndLinesWhereTheyFit)
{
    using Kind = SidebarNode::Kind;
    TestWindow t(2);
    auto& store = t.store();
    const auto trip = store.createProject("Trip", "project", {});
    const auto day = store.createProject("Day", "project", trip);
    const auto best = store.createAlbum("Best", {});
    moveLine(store, {Kind::album, best}, {Kind::project, day});
    const auto projects = sidebarTree(store.tree())[2];
    ASSERT_EQ(projects.children.size(), 1U);
    EXPECT_EQ(projects.children[0].children[0].children[0].name, "Best");
    EXPECT_FALSE(canBeMoved({Kind::project, trip}, {Kind::project, trip}));
    EXPECT_THROW(moveLine(store, {Kind::project, trip}, {Kind::project, day}), std::invalid_argument);

    store.select({1, 2});
    EXPECT_EQ(
        dropPhotos(store, {Kind::album, best, "Best", {}}, store.selection()), "Added 2 photos to “Best”.");
    EXPECT_EQ(sidebarTree(store.tree())[2].children[0].children[0].children[0].count, 2);
    const auto keyword = store.createKeyword("sea", {});
    dropPhotos(store, {Kind::keyword, keyword, "sea", {}}, IDs{1});
    dropPhotos(store, {Kind::keyword, keyword, "sea", {}}, IDs{1});
    EXPECT_EQ(t.listed(1).metadata.keywords, "sea");
    store.setMetadata(IDs{2}, {.keywords = SharedText("seagull, sea, coast")});
    renameLine(store, {Kind::keyword, keyword}, "coast");
    EXPECT_EQ(store.tree().keywords[0].name, "coast");
    EXPECT_EQ(t.listed(1).metadata.keywords, "coast");
    EXPECT_EQ(t.listed(2).metadata.keywords, "seagull, coast") << "once, in its place, and as a whole entry";
    EXPECT_THROW(renameLine(store, {Kind::keyword, keyword}, "sea, sand"), std::invalid_argument);
    store.undo();
    EXPECT_EQ(t.listed(2).metadata.keywords, "seagull, sea, coast");
    EXPECT_EQ(store.tree().keywords[0].name, "sea");
    renameLine(store, {Kind::album, best}, "Finest");
    EXPECT_EQ(store.tree().albums[0].name, "Finest");
    EXPECT_EQ(keyOf(sourceOf({Kind::album, best}).value()), (SidebarKey{Kind::album, best}));
}

TEST(ViewMemory, bringsBackSourceOrderAndSelectionAndPassesOverWhatIsGone)
{
    TestWindow t(3);
    auto& store = t.store();
    const auto album = store.createAlbum("Best", {});
    store.addToAlbum(album, IDs{1, 2, 3});
    store.chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    store.arrange(SortKey::rating, std::nullopt);
    store.select({3, 1});
    const auto memory = viewMemoryOf(textOf(viewMemory(store)));

    store.chooseSource({});
    store.arrange({}, GridFilter::starred);
    restoreView(store, memory);
    EXPECT_EQ(store.source()->id, album);
    EXPECT_EQ(store.list().sortKey(), SortKey::rating);
    EXPECT_EQ(store.list().filter(), std::nullopt);
    EXPECT_EQ(store.selection(), (IDs{3, 1}));

    store.chooseSource({});
    store.deleteAlbum(album);
    store.removePhotos(IDs{3});
    restoreView(store, memory);
    EXPECT_EQ(store.source(), std::nullopt);
    EXPECT_EQ(store.selection(), IDs{1});
    restoreView(store, viewMemoryOf("{\"source\": 3"));
    EXPECT_EQ(store.list().filter(), GridFilter::unratedOrBetter);
}

TEST(Window, comesBackAsItWasLeft)
{
    TestWindow t(3);
    t.store().select({2});
    t.press(Qt::Key_F7);
    t.window->resize(900, 650);
    t.window->close();
    t.window.reset();
    t.store().select({});
    MainWindow again(*t.desktop);
    restoreWindow(again);
    again.show();
    EXPECT_EQ(t.store().selection(), IDs{2});
    EXPECT_FALSE(again.commands().action(Command::sidebar)->isChecked());
    EXPECT_EQ(again.size(), QSize(900, 650));
}

TEST(Instance, aSecondStartBringsTheFirstWindowForward)
{
    const TemporaryFolder folder;
    int asked = 0;
    const auto ask = [&](const Instance::Paths& add) { asked += 1 + static_cast<int>(add.size()); };
    const auto first = Instance::begin(folder.path(), {}, ask);
    ASSERT_TRUE(first);
    const auto never = [](const Instance::Paths&) { FAIL(); };
    EXPECT_FALSE(Instance::begin(folder.path() / "." / "", {"/a photo", "/b"}, never));
    EXPECT_FALSE(Instance::begin(folder.path(), {}, never)) << "also before the first handles any events";
    EXPECT_TRUE(QTest::qWaitFor([&] { return asked == 4; }));
    EXPECT_TRUE(Instance::begin(folder / "another", {}, never));
}

TEST(StatusLine, keepsErrorsUntilEachIsClosed)
{
    TestWindow t(1);
    t.desktop->fail(std::runtime_error("the first"));
    t.desktop->fail(std::runtime_error("the second"));
    t.desktop->fail(std::runtime_error("the second"));
    t.desktop->say("Set Rating: 30 photos.", Offer::undo);
    EXPECT_TRUE(shows(t, "Set Rating: 30 photos."));
    EXPECT_TRUE(QTest::qWaitFor([&] { return shows(t, "The second."); }, 10'000)) << "it comes back";
    visibleButton(t, "Close (1 more)")->click();
    EXPECT_TRUE(shows(t, "The first."));
    visibleButton(t, "Close")->click();
    EXPECT_FALSE(shows(t, "The first."));
}

TEST(StatusLine, keepsFailuresOfJobsUntilTheyWereSeen)
{
    TestWindow t(1);
    auto& jobs = t.desktop->jobs();
    const auto run = [&](const char* title, int failures) {
        jobs.start(title, [failures](JobContext& job) {
            for (int i = 0; i < failures; ++i)
                job.fail("It is damaged.");
            return std::string();
        });
        ASSERT_TRUE(QTest::qWaitFor([&] { return !jobs.running(); }));
    };
    run("Import", 2);
    run("Auto", 0);
    run("Export", 1);
    visibleButton(t, "3 failures")->click();
    run("Auto", 0);
    EXPECT_TRUE(visibleButton(t, "3 failures")) << "as long as the list is open";
    t.window->findChild<QDialog*>()->close();
    EXPECT_FALSE(visibleButton(t, "3 failures"));
}

TEST(MainWindow, takesDroppedFilesWhateverBytesTheirNamesHave)
{
    TestWindow t(0);
    const auto file = t.folder.write("caf\xe9 %41.jpg", "x");
    QMimeData dropped;
    dropped.setUrls({urlOf(file)});
    t.window->addDropped(dropped);
    ASSERT_TRUE(QTest::qWaitFor([&] { return t.store().list().shown().size() == 1; }));
    EXPECT_EQ(t.store().list().items()[0].path(), file);
}

TEST(MainWindow, livesBeforeItsPhotosAreThere)
{
    TestWindow window(5, std::chrono::milliseconds(0));
    window.press(Qt::Key_Right);
    window.press(Qt::Key_E);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window.store().isReading(); }));
    window.press(Qt::Key_Right);
    window.press(Qt::Key_3);
    EXPECT_EQ(window.store().list().shown().size(), 5U);
    EXPECT_EQ(window.listed(window.desktop->browser().current().value()).rating, 3);
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

} // namespace korvo
