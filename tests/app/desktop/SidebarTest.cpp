#include "app/desktop/sidebar/Sidebar.h"
#include "app/desktop/Texts.h"
#include "app/desktop/photos/PhotoDrag.h"
#include "app/view/SidebarActions.h"
#include "app/view/SidebarTree.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"
#include "tests/app/desktop/TestWindow.h"
#include "tests/support/ListedPhotos.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QTimer>
#include <QToolTip>

#include <map>

namespace korvo {

using IDs = std::vector<PhotoID>;

namespace {

/// Chooses an entry of a line's menu, right after `before`.
void chooseInMenu(
    Sidebar& sidebar, const char* line, const QString& entry, const std::function<void()>& before = [] {})
{
    const auto* const item = sidebar.findItems(line, Qt::MatchExactly | Qt::MatchRecursive).at(0);
    const QPoint at = sidebar.visualItemRect(item).center();
    QTimer::singleShot(0, [&] {
        before();
        auto& menu = dynamic_cast<QMenu&>(*QApplication::activePopupWidget());
        for (auto* const action : menu.actions())
            if (action->text() == entry)
                action->trigger();
        menu.close();
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, sidebar.viewport()->mapToGlobal(at));
    QApplication::sendEvent(sidebar.viewport(), &event);
}

} // namespace

TEST(Sidebar, keepsItsLineAndANameThatIsBeingTyped)
{
    TestWindow t(1);
    auto& store = t.store();
    const SidebarKey zoo{SidebarNode::Kind::keyword, createKeyword(store, "zoo", {})};
    createKeyword(store, "bear", {});
    auto& sidebar = t.window->sidebar();
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

TEST(Sidebar, makesThingsWhereOneClicked)
{
    TestWindow t(1);
    auto& store = t.store();
    const auto shown = createProject(store, "shown", "project", {});
    const auto clicked = createProject(store, "clicked", "project", {});
    createAlbum(store, "old", clicked);
    const auto keyword = createKeyword(store, "sea", {});
    auto& sidebar = t.window->sidebar();
    store.chooseSource(LibrarySource{LibrarySource::Kind::project, shown, {}});
    QTest::qWait(20);
    sidebar.expandAll();
    const auto make = [&](const char* line, const QString& entry, const char* name) {
        chooseInMenu(sidebar, line, entry, [&] {
            QTimer::singleShot(0, [name] {
                auto& dialog = dynamic_cast<QInputDialog&>(*QApplication::activeModalWidget());
                dialog.setTextValue(name);
                dialog.accept();
            });
        });
    };
    make("clicked", "New Album…", "one");
    make("old", "New Album…", "two");
    make("All Photos", "New Album…", "three");
    std::map<std::string, std::optional<std::int64_t>> parents;
    for (const auto& album : store.tree().albums)
        parents[album.name] = album.parentID;
    EXPECT_EQ(parents.at("one"), clicked);
    EXPECT_EQ(parents.at("two"), clicked) << "beside the album";
    EXPECT_EQ(parents.at("three"), std::nullopt) << "not in the project that is shown";
    make("clicked", "New Project…", "below");
    EXPECT_EQ(store.tree().projects.at(1).children.at(0).name, "below");
    make("sea", "New Keyword…", "wave");
    EXPECT_EQ(store.tree().keywords.at(1).parentID, keyword);
    EXPECT_EQ(store.source()->id, shown) << "a right click chooses nothing";
}

TEST(Sidebar, arrangesItsLinesByKeysAndMenus)
{
    TestWindow t(0);
    auto& store = t.store();
    for (const char* const name : {"p", "q"})
        createProject(store, name, "project", {});
    for (const char* const name : {"s", "t"})
        createSmartAlbum(store, name, {});
    auto& sidebar = t.window->sidebar();
    QTest::qWait(20);
    for (const auto& [heading, upper, lower] : {std::tuple(2, "p", "q"), {3, "s", "t"}}) {
        const auto isFirst = [&, heading = heading](const char* name) {
            return QTest::qWaitFor([&] { return sidebar.topLevelItem(heading)->child(0)->text(0) == name; });
        };
        auto* const line = sidebar.topLevelItem(heading)->child(0);
        EXPECT_TRUE(line->flags() & Qt::ItemIsDragEnabled) << upper;
        sidebar.setCurrentItem(line);
        QTest::keyClick(&sidebar, Qt::Key_Down, Qt::AltModifier);
        EXPECT_TRUE(isFirst(lower)) << upper;
        chooseInMenu(sidebar, upper, "Move Up");
        EXPECT_TRUE(isFirst(upper));
    }
}

TEST(Sidebar, takesPhotosWhereTheyCanGo)
{
    TestWindow t(2);
    const auto album = createAlbum(t.store(), "album", {});
    auto& sidebar = t.window->sidebar();
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
    auto& sidebar = t.window->sidebar();
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
    t.window->sidebar().setFocus();
    t.press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(store.list().shown().size(), 2U);
    t.press(Qt::Key_Delete);
    EXPECT_TRUE(store.tree().albums.empty());
    EXPECT_EQ(store.list().shown().size(), 2U) << "all photos";
    t.window->sidebar().setFocus();
    t.press(Qt::Key_Delete); // on "All Photos"
    EXPECT_EQ(store.undoTitle(), "Delete Album");
    t.visibleButton("Undo")->click();
    EXPECT_EQ(store.tree().albums.size(), 1U);
}

TEST(Sidebar, asksForPhotosThatLeaveTheLibraryAndTellsHowMany)
{
    TestWindow t(3);
    auto& store = t.store();
    const auto folder = store.catalog().addFolder("/photos", 0).id;
    for (const auto* const name : {"/photos/x.jpg", "/photos/y.jpg"}) {
        const NewPhoto photo{.folderID = folder, .path = name};
        store.catalog().addPhotos(std::span(&photo, 1));
    }
    createProject(store, "project", "project", {});
    store.reload();
    QTest::qWait(20);
    auto& sidebar = t.window->sidebar();
    const auto refusedDeletionOf = [&](const char* line) {
        sidebar.setCurrentItem(sidebar.findItems(line, Qt::MatchExactly | Qt::MatchRecursive).at(0));
        sidebar.setFocus();
        return t.refused([&] { t.press(Qt::Key_Delete); });
    };
    EXPECT_EQ(refusedDeletionOf("project"), "") << "which undo brings back";
    EXPECT_TRUE(store.tree().projects.empty());
    QTest::qWait(20);
    EXPECT_TRUE(refusedDeletionOf("photos").startsWith("Remove the folder “photos” and its 2 photos"));
}

TEST(Sidebar, keepsWhichLinesAreOpen)
{
    TestWindow t(0);
    const auto project = createProject(t.store(), "project", "project", {});
    createAlbum(t.store(), "album", project);
    auto& sidebar = t.window->sidebar();
    QTest::qWait(20);
    auto* const line = sidebar.findItems("project", Qt::MatchExactly | Qt::MatchRecursive).at(0);
    auto* const heading = sidebar.topLevelItem(4);
    line->setExpanded(true);
    heading->setExpanded(false);
    const auto kept = sidebar.openLines();
    EXPECT_NE(kept.find("project:" + std::to_string(project)), std::string::npos) << kept;
    line->setExpanded(false);
    heading->setExpanded(true);
    sidebar.restoreOpenLines("4:12 mood:1 heading:none project: " + kept);
    EXPECT_TRUE(line->isExpanded());
    EXPECT_FALSE(heading->isExpanded());
    EXPECT_TRUE(sidebar.topLevelItem(0)->isExpanded());
}

TEST(Sidebar, putsFilesWhereTheyAreDroppedThoseOfTheLibraryToo)
{
    TestWindow t(0);
    auto& store = t.store();
    const auto album = createAlbum(store, "album", {});
    t.folder.write("new/a.jpg", "x");
    t.folder.write("new/b.jpg", "x");
    auto& sidebar = t.window->sidebar();
    QTest::qWait(20);
    std::string said;
    const auto noticed = t.desktop->noticed.connect([&](const Notice& notice) { said = notice.text; });
    const auto drop = [&](const char* file, const char* name) {
        QMimeData data;
        data.setUrls({urlOf(t.folder / file)});
        const auto* const line = sidebar.findItems(name, Qt::MatchExactly | Qt::MatchRecursive).at(0);
        const QPoint at = sidebar.visualItemRect(line).center();
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &move);
        EXPECT_TRUE(move.isAccepted());
        EXPECT_EQ(QToolTip::text().contains("and to"), std::string_view(name) != "Videos");
        QDropEvent event(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &event);
        EXPECT_TRUE(QTest::qWaitFor([&] { return t.desktop->jobs().running().empty(); }));
    };
    drop("new/b.jpg", "Videos");
    EXPECT_EQ(said, "Added 1 photo.");
    drop("new", "album");
    EXPECT_EQ(said,
        "Added 1 photo, 1 in the library already. Added 2 photos to “album”. Undo leaves them in the "
        "library.");
    store.chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    EXPECT_EQ(shownIDs(store.list()), (IDs{2, 1}));
    store.undo();
    EXPECT_TRUE(store.list().shown().empty());
    EXPECT_EQ(store.undoTitle(), "Add 1 Photo");
    t.folder.write("c.jpg", "x");
    drop("c.jpg", "Flagged");
    const auto flagged = store.catalog().photos(LibrarySource{LibrarySource::Kind::flagged, 0, {}});
    ASSERT_EQ(flagged.size(), 1U) << "though the album is shown";
    EXPECT_EQ(flagged.front().filename.view(), "c.jpg");
}

} // namespace korvo
