#include "app/AlbumOrder.h"
#include "app/SearchFilter.h"
#include "app/SidebarTree.h"
#include "app/Stacking.h"
#include "app/ViewMemory.h"
#include "app/desktop/Instance.h"
#include "app/desktop/PhotoDrag.h"
#include "app/desktop/Texts.h"
#include "app/desktop/WindowMemory.h"
#include "app/desktop/grid/GridLayout.h"
#include "app/desktop/grid/GridView.h"
#include "app/desktop/sidebar/Sidebar.h"
#include "catalog/GroupActions.h"
#include "catalog/LibraryActions.h"
#include "tests/app/desktop/TestWindow.h"
#include "tests/support/ListedPhotos.h"

#include <QDialog>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QStatusBar>

namespace korvo {

using IDs = std::vector<PhotoID>;

namespace {

/// Whether the status line says so.
bool shows(const TestWindow& t, const char* text)
{
    for (const auto* const label : t.window->statusBar()->findChildren<QLabel*>())
        if (label->isVisible() && label->text() == text)
            return true;
    return false;
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

TEST(StatusLine, offersToTakeBackWhatItTellsOfAndNothingElse)
{
    TestWindow t(2);
    auto& commands = t.window->commands();
    const auto undo = [&] { return t.visibleButton("Undo"); };
    t.store().arrange(std::nullopt, std::nullopt); // rejected photos stay in sight
    t.store().select({1});
    commands.run(Command::remove);
    EXPECT_TRUE(undo());
    commands.run(Command::remove); // rejected already
    EXPECT_FALSE(undo()) << "nothing was done that could be taken back";
    t.store().select({2});
    commands.run(Command::remove);
    setRating(t.store(), only(1), 3);
    EXPECT_FALSE(undo()) << "another action is the last one";
    t.store().undo();
    ASSERT_TRUE(undo());
    undo()->click();
    EXPECT_EQ(t.listed(2).rating, 0);
    EXPECT_LT(t.listed(1).rating, 0);

    t.desktop->fail(std::runtime_error(std::string(5000, 'x')));
    EXPECT_LE(t.window->minimumSizeHint().width(), 1000) << "a long line does not widen the window";
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
    const auto trip = createProject(store, "Trip", "project", {});
    const auto day = createProject(store, "Day", "project", trip);
    const auto best = createAlbum(store, "Best", {});
    moveLine(store, {Kind::album, best}, {Kind::project, day});
    const auto projects = sidebarTree(store.tree())[2];
    EXPECT_EQ(sidebarTree(store.tree())[0].children[0].count, 2);
    EXPECT_FALSE(sidebarTree(store.tree(), PhotosCounted::notYet)[0].children[0].count);
    ASSERT_EQ(projects.children.size(), 1U);
    EXPECT_EQ(projects.children[0].children[0].children[0].name, "Best");
    EXPECT_FALSE(canBeMoved({Kind::project, trip}, {Kind::project, trip}));
    EXPECT_THROW(moveLine(store, {Kind::project, trip}, {Kind::project, day}), std::invalid_argument);

    store.select({1, 2});
    EXPECT_EQ(
        dropPhotos(store, {Kind::album, best, "Best", {}}, store.selection()), "Added 2 photos to “Best”.");
    EXPECT_EQ(sidebarTree(store.tree())[2].children[0].children[0].children[0].count, 2);
    const auto keyword = createKeyword(store, "sea", {});
    dropPhotos(store, {Kind::keyword, keyword, "sea", {}}, IDs{1});
    dropPhotos(store, {Kind::keyword, keyword, "sea", {}}, IDs{1});
    EXPECT_EQ(t.listed(1).metadata.keywords, "sea");
    setMetadata(store, IDs{2}, {.keywords = SharedText("seagull, sea, coast")});
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

TEST(SidebarTree, putsLinesBesideOthersAndKeywordsIntoOthers)
{
    using Kind = SidebarNode::Kind;
    TestWindow t(1);
    auto& store = t.store();
    std::vector<SidebarKey> projects, albums;
    for (const auto* const name : {"a", "b", "c"}) {
        projects.push_back({Kind::project, createProject(store, name, "project", {})});
        albums.push_back({Kind::album, createAlbum(store, name, projects[0].id)});
    }
    const auto order = [&] {
        std::string names;
        const auto add = [&](const auto& self, const std::vector<SidebarNode>& nodes) -> void {
            for (const auto& node : nodes) {
                names += node.name;
                self(self, node.children);
            }
        };
        add(add, sidebarTree(store.tree())[2].children);
        return names;
    };
    EXPECT_EQ(order(), "aabcbc");
    moveLine(store, projects[2], projects[0], DropAt::above);
    EXPECT_EQ(order(), "caabcb");
    moveLine(store, projects[2], projects[0], DropAt::below);
    EXPECT_EQ(order(), "aabccb");
    moveLine(store, albums[0], albums[2], DropAt::below);
    stepLine(store, albums[0], 1); // the last already
    EXPECT_EQ(order(), "abcacb");
    stepLine(store, albums[0], -1);
    EXPECT_EQ(order(), "abaccb");
    store.undo();
    EXPECT_EQ(order(), "abcacb");
    EXPECT_FALSE(canBeMoved(projects[0], albums[0], DropAt::above));
    const SidebarKey animals{Kind::keyword, createKeyword(store, "animals", {})};
    const SidebarKey birds{Kind::keyword, createKeyword(store, "birds", {})};
    moveLine(store, birds, animals);
    EXPECT_EQ(store.tree().keywords[1].parentID, animals.id);
    const auto places = placesFor(sidebarTree(store.tree()), animals);
    ASSERT_EQ(places.size(), 1U);
    EXPECT_TRUE(places[0].children.empty()) << "neither into itself nor into what lies in it";
    moveLine(store, birds, {places[0].kind, places[0].id});
    EXPECT_FALSE(store.tree().keywords[1].parentID);
    ASSERT_EQ(animals.id, albums[0].id) << "albums have numbers of their own";
    stepLine(store, animals, 1);
    EXPECT_FALSE(store.tree().keywords[0].parentID) << "keywords stand in the order of their names";
    setRating(store, IDs{1}, -1);
    dropPhotos(
        store, {Kind::source, static_cast<std::int64_t>(LibrarySource::Kind::flagged), "Flagged"}, IDs{1});
    EXPECT_TRUE(store.catalog().photo(1)->flagged);
    EXPECT_FALSE(store.catalog().photo(1)->isRejected());
}

TEST(Sidebar, keepsItsLineAndANameThatIsBeingTyped)
{
    TestWindow t(1);
    auto& store = t.store();
    const SidebarKey zoo{SidebarNode::Kind::keyword, createKeyword(store, "zoo", {})};
    createKeyword(store, "bear", {});
    auto& sidebar = *sidebarOf(*t.window);
    const auto line = [&](const char* name) {
        QTreeWidgetItem* item = nullptr;
        EXPECT_TRUE(QTest::qWaitFor([&] {
            item = sidebar.findItems(name, Qt::MatchExactly | Qt::MatchRecursive).value(0);
            return item != nullptr;
        })) << name;
        return item;
    };
    auto& search = *t.window->findChild<QLineEdit*>("search");
    sidebar.setCurrentItem(line("zoo"));
    EXPECT_EQ(search.text(), "zoo");
    sidebar.setCurrentItem(line("Flagged"));
    EXPECT_EQ(search.text(), "");
    sidebar.setCurrentItem(line("zoo"));
    search.setText("zoo lion");
    sidebar.setCurrentItem(line("Flagged"));
    EXPECT_EQ(search.text(), "zoo lion") << "other words were typed since";
    sidebar.setCurrentItem(line("zoo"));
    renameLine(store, zoo, "ant");
    const auto* const moved = line("ant"); // above the other
    EXPECT_EQ(sidebar.currentItem(), moved);
    sidebar.renameChosen();
    auto* const editor = sidebar.viewport()->findChild<QLineEdit*>();
    ASSERT_TRUE(editor);
    QTest::keyClicks(editor, "ape");
    createAlbum(store, "Best", {});
    QTest::qWait(20);
    EXPECT_EQ(editor->text(), "ape");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return store.tree().keywords[0].name == "ape"; }));
    line("Best");
    deleteLine(store, zoo);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !sidebar.chosenKeyword(); })) << "not the neighbour";
}

TEST(Sidebar, takesPhotosWhereTheyCanGo)
{
    TestWindow t(2);
    const auto album = createAlbum(t.store(), "album", {});
    auto& sidebar = *sidebarOf(*t.window);
    QTest::qWait(20);
    const std::vector dragged{t.store().list().find(2)};
    const std::unique_ptr<QMimeData> data(dragData(dragged));
    const auto dropOn = [&](const char* name) {
        const auto* const line = sidebar.findItems(name, Qt::MatchExactly | Qt::MatchRecursive).at(0);
        const QPoint at = sidebar.visualItemRect(line).center();
        QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &move);
        QDropEvent drop(at, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &drop);
        return move.isAccepted();
    };
    EXPECT_FALSE(dropOn("Videos"));
    EXPECT_TRUE(dropOn("album"));
    t.store().chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    EXPECT_EQ(shownIDs(t.store().list()), IDs{2});
}

TEST(Sidebar, opensAClosedLineThatPhotosRestOnAndLeavesAnOpenOneOpen)
{
    TestWindow t(1);
    createAlbum(t.store(), "album", createProject(t.store(), "project", "project", {}));
    auto& sidebar = *sidebarOf(*t.window);
    QTest::qWait(20);
    const std::unique_ptr<QMimeData> data(dragData(std::vector{t.store().list().find(1)}));
    auto* const line = sidebar.findItems("project", Qt::MatchExactly | Qt::MatchRecursive).at(0);
    for (const bool wasOpen : {false, true}) {
        line->setExpanded(wasOpen);
        const QPoint at = sidebar.visualItemRect(line).center();
        QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &move);
        QTest::qWait(1000);
        EXPECT_TRUE(line->isExpanded());
        QDragLeaveEvent leave;
        QApplication::sendEvent(sidebar.viewport(), &leave);
    }
}

TEST(Sidebar, deleteMeansItsLineAndNeverPhotos)
{
    TestWindow t(2);
    auto& store = t.store();
    const auto album = createAlbum(store, "album", {});
    addToAlbum(store, album, IDs{1, 2});
    store.chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    QTest::qWait(20);
    store.select({1});
    sidebarOf(*t.window)->setFocus();
    t.press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(store.list().shown().size(), 2U);
    t.press(Qt::Key_Delete);
    EXPECT_TRUE(store.tree().albums.empty());
    EXPECT_EQ(store.list().shown().size(), 2U) << "all photos";
    sidebarOf(*t.window)->setFocus();
    t.press(Qt::Key_Delete); // on "All Photos"
    EXPECT_EQ(store.undoTitle(), "Delete Album");
    t.visibleButton("Undo")->click();
    EXPECT_EQ(store.tree().albums.size(), 1U);
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

TEST(ViewMemory, bringsBackSourceOrderAndSelectionAndPassesOverWhatIsGone)
{
    TestWindow t(3);
    auto& store = t.store();
    const auto album = createAlbum(store, "Best", {});
    addToAlbum(store, album, IDs{1, 2, 3});
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
    deleteAlbum(store, album);
    removePhotos(store, IDs{3});
    restoreView(store, memory);
    EXPECT_EQ(store.source(), std::nullopt);
    EXPECT_EQ(store.selection(), IDs{1});
    restoreView(store, viewMemoryOf("{\"source\": 3"));
    EXPECT_EQ(store.list().filter(), GridFilter::unratedOrBetter);
}

TEST(Window, comesBackAsItWasLeft)
{
    TestWindow t(3);
    const SidebarKey trip{SidebarNode::Kind::project, createProject(t.store(), "Trip", "project", {})};
    createAlbum(t.store(), "Best", trip.id);
    QTest::qWait(10);
    const auto lineOf = [](const MainWindow& window, const char* name) {
        return sidebarOf(window)->findItems(name, Qt::MatchExactly | Qt::MatchRecursive).at(0);
    };
    sidebarOf(*t.window)->filter("best");
    EXPECT_TRUE(lineOf(*t.window, "Trip")->isExpanded()) << "what is found can be seen";
    sidebarOf(*t.window)->filter("");
    EXPECT_FALSE(lineOf(*t.window, "Trip")->isExpanded());
    lineOf(*t.window, "Trip")->setExpanded(true);
    lineOf(*t.window, "Keywords")->setExpanded(false);
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
    EXPECT_TRUE(lineOf(again, "Trip")->isExpanded());
    EXPECT_FALSE(lineOf(again, "Keywords")->isExpanded());
}

TEST(Window, tabHidesWhatIsShownOfBothSidesAndVGoesThroughTheThreeViews)
{
    TestWindow t(2);
    const auto shown = [&](Command command) { return t.window->commands().action(command)->isChecked(); };
    t.press(Qt::Key_F8);
    t.press(Qt::Key_Tab);
    EXPECT_FALSE(shown(Command::sidebar) || shown(Command::inspector));
    t.press(Qt::Key_Tab);
    EXPECT_TRUE(shown(Command::sidebar) && !shown(Command::inspector));
    std::string views;
    for (int i = 0; i < 4; ++i) {
        t.press(Qt::Key_V);
        const bool isGrid = t.desktop->browser().mode() == ViewMode::grid;
        views += isGrid ? "grid " : shown(Command::filmstrip) ? "both " : "viewer ";
    }
    EXPECT_EQ(views, "both viewer grid both ");
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
    t.visibleButton("Close (1 more)")->click();
    EXPECT_TRUE(shows(t, "The first."));
    t.visibleButton("Close")->click();
    EXPECT_FALSE(shows(t, "The first."));
}

TEST(StatusLine, keepsFailuresOfJobsUntilTheyWereSeen)
{
    TestWindow t(1);
    auto& jobs = t.desktop->jobs();
    const auto run = [&](const char* title, int failures) {
        jobs.start(title, Stopping::keeps, [failures](JobContext& job) {
            for (int i = 0; i < failures; ++i)
                job.fail("It is damaged.");
            return std::string();
        });
        ASSERT_TRUE(QTest::qWaitFor([&] { return jobs.running().empty(); }));
    };
    run("Import", 2);
    run("Auto", 0);
    run("Export", 1);
    t.visibleButton("3 failures")->click();
    run("Auto", 0);
    EXPECT_TRUE(t.visibleButton("3 failures")) << "as long as the list is open";
    t.window->findChild<QDialog*>()->close();
    EXPECT_FALSE(t.visibleButton("3 failures"));
}

TEST(MainWindow, quittingTellsWhatIsLeftOfAllThatRuns)
{
    TestWindow t(1);
    std::atomic<bool> ends = false;
    const auto start = [&](const char* title, Stopping stopping, std::size_t done) {
        t.desktop->jobs().start(title, stopping, [&ends, done](JobContext& job) {
            job.progress(done, 1000);
            while (!ends && !job.stop().stop_requested())
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            return std::string();
        });
        const auto& job = *t.desktop->jobs().all().back();
        ASSERT_TRUE(QTest::qWaitFor([&] { return job.done() == done; }));
    };
    start("Adding", Stopping::keeps, 900);
    EXPECT_EQ(t.refused(Command::quit),
        "“Adding” is still going on.\nWhat is done stays, about 900 of 1,000.\nQuitting ends it here.");
    start("Auto", Stopping::drops, 500);
    EXPECT_EQ(t.refused(Command::quit),
        "2 jobs are still going on.\n“Adding”: What is done stays, about 900 of 1,000.\n"
        "“Auto”: Nothing of it is kept before it has ended.\nQuitting ends them here.");
    EXPECT_TRUE(t.window->isVisible());
    ends = true;
    EXPECT_TRUE(QTest::qWaitFor([&] { return t.desktop->jobs().running().empty(); }));
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return t.store().undoTitle() == "Add 1 Photo"; }));
    t.window->commands().run(Command::undo);
    EXPECT_TRUE(t.store().list().shown().empty());
    auto* const redo = t.visibleButton("Redo");
    ASSERT_TRUE(redo);
    redo->click();
    EXPECT_EQ(t.store().list().shown().size(), 1U);
    EXPECT_FALSE(t.visibleButton("Redo"));
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
