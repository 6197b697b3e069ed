#include "app/Libraries.h"
#include "app/desktop/Texts.h"
#include "app/desktop/sidebar/Sidebar.h"
#include "app/desktop/start/Instance.h"
#include "app/desktop/start/Screenshot.h"
#include "app/desktop/start/Termination.h"
#include "catalog/store/LibraryActions.h"
#include "tests/app/desktop/TestWindow.h"
#include "tests/support/ListedPhotos.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QRegularExpression>
#include <QStatusBar>

#include <csignal>

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

TEST(StatusLine, offersToTakeBackWhatItTellsOfAndNothingElse)
{
    TestWindow t(2);
    auto& commands = t.window->commands();
    const auto undo = [&] { return t.visibleButton("Undo"); };
    t.store().arrange(std::nullopt, std::nullopt); // rejected photos stay in sight
    t.store().select({1});
    commands.run(Command::remove);
    EXPECT_TRUE(undo());
    t.desktop->noticed.emit({Notice::Kind::news, "Saved metadata into 1 file."});
    EXPECT_TRUE(undo()) << "what is offered keeps its time";
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

TEST(Window, comesBackAsItWasLeft)
{
    TestWindow t(3);
    const SidebarKey trip{SidebarNode::Kind::project, createProject(t.store(), "Trip", "project", {})};
    createAlbum(t.store(), "Best", trip.id);
    QTest::qWait(10);
    const auto lineOf = [](const MainWindow& window, const char* name) {
        return window.sidebar().findItems(name, Qt::MatchExactly | Qt::MatchRecursive).at(0);
    };
    t.window->sidebar().filter("best");
    EXPECT_TRUE(lineOf(*t.window, "Trip")->isExpanded()) << "what is found can be seen";
    t.window->sidebar().filter("");
    EXPECT_FALSE(lineOf(*t.window, "Trip")->isExpanded());
    lineOf(*t.window, "Trip")->setExpanded(true);
    lineOf(*t.window, "Keywords")->setExpanded(false);
    t.window->memory().rememberInBackground(); // another program comes to the front
    EXPECT_TRUE(QTest::qWaitFor([&] { return t.defaults.get("korvo_window_geometry").has_value(); }));
    t.store().select({2});
    t.press(Qt::Key_F7);
    t.window->resize(900, 650);
    t.window->close();
    t.window.reset();
    t.store().select({});
    MainWindow again(*t.desktop);
    again.memory().restore();
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

TEST(Toolbar, theRejectButtonTakesTheUsualFiltersPlaceAndClearTakesAllBack)
{
    TestWindow t(3);
    auto& store = t.store();
    setRating(store, only(2), rejectedRating);
    const auto button = [&](const char* name) -> QToolButton& {
        for (auto* const each : t.window->findChildren<QToolButton*>())
            if (each->accessibleName() == name)
                return *each;
        throw std::out_of_range(name);
    };
    button("Rejected only").click();
    EXPECT_EQ(shownIDs(store.list()), IDs{2});
    button("Rejected only").click();
    EXPECT_EQ(shownIDs(store.list()), (IDs{1, 3}));
    EXPECT_FALSE(button("Clear").isEnabled());
    auto& search = *t.window->findChild<QLineEdit*>("search");
    search.setText("a.jpg");
    button("Flagged only").click();
    button("Only 3 stars or more").click();
    store.arrange(SortKey::rating, GridFilter::missingAlt);
    EXPECT_TRUE(store.list().shown().empty());
    button("Clear").click();
    EXPECT_EQ(shownIDs(store.list()), (IDs{1, 3}));
    EXPECT_EQ(store.list().sortKey(), SortKey::rating) << "the order stays";
    EXPECT_TRUE(search.text().isEmpty() && !button("Flagged only").isChecked());
    EXPECT_FALSE(button("Clear").isEnabled());
    QTest::qWait(200); // no words come late
    EXPECT_TRUE(store.list().arrangement().narrowing.empty());
}

TEST(Screenshot, itsViewsStandInTheManual)
{
    const auto plain = [](QString text) { return text.remove(QRegularExpression("[\\s\"]|\\.BR")); };
    EXPECT_TRUE(
        plain(QString::fromStdString(readFile(KORVO_DESKTOP_MANUAL))).contains(plain(qt(screenshotViews()))));
}

TEST(Window, openRecentNamesLibrariesWhoseDiskIsAwayAndSaysSoWhenOneIsChosen)
{
    TestWindow t(0);
    openLibrary(t.folder / "Trip", t.clock, t.defaults);
    std::filesystem::remove_all(t.folder / "Trip");
    auto* const menu = t.window->commands().action(Command::openRecent)->menu();
    Q_EMIT menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_TRUE(menu->actions().at(0)->text().startsWith("Trip — "));
    menu->actions().at(0)->trigger();
    const auto said = "The library Trip is not there. It was last opened at " + (t.folder / "Trip").string()
        + ". If that is on a disk that is not connected, connect it and try again.";
    EXPECT_TRUE(QTest::qWaitFor([&] { return shows(t, said.c_str()); }));
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

TEST(Desktop, saysWhatWasDoneOnceItIsDone)
{
    TestWindow t(0, std::chrono::milliseconds(0));
    t.selectMany();
    std::vector<std::string> said;
    const auto listening = t.desktop->noticed.connect([&](const Notice& notice) {
        said.push_back(notice.text.substr(0, 14) + (notice.undoes ? "!" : ""));
    });
    t.hideCatalog();
    t.window->commands().run(Command::remove);
    t.settleStore();
    ASSERT_EQ(said.size(), 1U);
    EXPECT_EQ(said[0], "Couldn't open ") << "nothing was rejected";
    said.clear();
    t.bringCatalogBack();
    {
        Database other(t.catalogFile());
        const Transaction writing(other);
        t.window->commands().run(Command::remove);
        EXPECT_EQ(said, std::vector<std::string>());
    }
    t.settleStore();
    EXPECT_EQ(said, std::vector<std::string>{"Rejected 2,500!"});

    said.clear();
    const auto mayEnd = t.beginStep();
    t.desktop->attempt([&] { // as while the user is asked something
        *mayEnd = true;
        t.settleStore();
        setRating(t.store(), only(1), 1);
        t.desktop->say("Rated.", Offer::undo);
    });
    EXPECT_EQ(said, std::vector<std::string>{"Rated.!"});
}

TEST(Revert, asksBeforeItBeginsButNotForWhatIsNeverWritten)
{
    TestWindow t(1);
    const NewPhoto aperture{.path = "/photos/A.aplibrary/Masters/b.jpg"};
    const auto inAperture = t.store().catalog().addPhotos(std::span(&aperture, 1)).front().id;
    t.store().reload();
    QString asked;
    QTimer answering;
    QObject::connect(&answering, &QTimer::timeout, [&] {
        if (auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            asked = box->informativeText();
            box->reject();
        }
    });
    answering.start(1);
    t.store().select({1, inAperture});
    t.window->commands().run(Command::revertMetadata);
    EXPECT_TRUE(QTest::qWaitFor([&] { return asked.contains("on 2 photos"); })) << asked.toStdString();
    asked.clear();
    t.store().select({inAperture});
    t.window->commands().run(Command::revertMetadata);
    EXPECT_TRUE(QTest::qWaitFor([&] { return t.visibleButton("Close"); })) << "it is refused";
    EXPECT_EQ(asked, "");
}

TEST(Termination, isToldOfATerminalThatCloses)
{
    std::signal(SIGHUP, SIG_DFL); // under nohup it is ignored, and stays so
    bool isToEnd = false;
    QObject context;
    onTermination(context, [&] { isToEnd = true; });
    ASSERT_EQ(raise(SIGHUP), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isToEnd; }));
}

} // namespace korvo
