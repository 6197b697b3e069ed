#include "app/view/Marking.h"
#include "catalog/store/LibraryActions.h"
#include "tests/app/desktop/TestWindow.h"

#include <QAccessible>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSlider>

namespace korvo {

namespace {

using IDs = std::vector<PhotoID>;

/// Notes what is said to the user.
struct Heard {
    explicit Heard(Desktop& desktop)
        : connection(desktop.noticed.connect([this](const Notice& notice) { notices.push_back(notice); }))
    { }
    std::vector<Notice> notices;
    Connection connection;
};

} // namespace

TEST(Culling, aKeyActsOnAllSelectedInTheGridAndElsewhereOnThePhotoShown)
{
    TestWindow t(4);
    t.store().select({1, 2, 3});
    t.press(Qt::Key_4);
    EXPECT_EQ(t.listed(1).rating + t.listed(2).rating + t.listed(3).rating, 12);
    t.desktop->browser().setCurrent(2);
    t.desktop->browser().setMode(ViewMode::viewer);
    t.press(Qt::Key_1);
    t.press(Qt::Key_6);
    EXPECT_EQ(t.listed(2).rating, 1);
    EXPECT_EQ(t.listed(2).label, PhotoLabel::red);
    EXPECT_EQ(t.listed(1).rating, 4);
    EXPECT_EQ(t.listed(3).label, PhotoLabel::none);
}

TEST(Culling, shiftGoesOnToTheNextPhotoBothInTheGridAndInTheViewer)
{
    TestWindow t(4);
    for (const auto mode : {ViewMode::grid, ViewMode::viewer}) {
        t.store().select({1});
        t.desktop->browser().setMode(mode);
        t.press(Qt::Key_P, Qt::ShiftModifier);
        EXPECT_EQ(t.desktop->browser().current(), 2);
        EXPECT_EQ(t.store().selection(), IDs{2});
        t.press(Qt::Key_P);
        EXPECT_EQ(t.desktop->browser().current(), 2) << "without Shift it stays";
    }
    t.desktop->browser().setMode(ViewMode::grid);
    t.store().select({1, 3});
    t.press(Qt::Key_3, Qt::ShiftModifier);
    EXPECT_EQ(t.store().selection(), IDs{4}) << "behind the last of several";
}

TEST(Culling, underCapsLockAllMarkingKeysGoOn)
{
    TestWindow t(3);
    t.store().select({1});
    for (const auto& [key, text] : {std::pair{Qt::Key_P, "P"}, {Qt::Key_Slash, "/"}}) {
        constexpr quint32 capsLock = 2;
        QKeyEvent heard(QEvent::ShortcutOverride, key, Qt::NoModifier, 0, 0, capsLock, text);
        QApplication::sendEvent(QApplication::focusWidget(), &heard);
        t.window->commands().run(key == Qt::Key_P ? Command::pick : Command::toggleFlag);
    }
    EXPECT_EQ(t.store().selection(), IDs{3});
    EXPECT_TRUE(t.listed(1).flagged && t.listed(2).flagged && !t.listed(3).flagged);
}

TEST(Culling, aPhotoThatTheFilterHidesMakesRoomForTheNextAndUndoBringsItBackSelected)
{
    TestWindow t(3);
    t.store().select({2});
    t.press(Qt::Key_X);
    EXPECT_EQ(t.store().selection(), IDs{3});
    t.press(Qt::Key_X, Qt::ShiftModifier); // the last one: back to what is before it
    EXPECT_EQ(t.store().selection(), IDs{1});
    t.press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(t.store().selection(), IDs{3});
    t.press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(t.store().selection(), IDs{2});
    t.press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(t.store().catalog().photo(2)->isRejected());
}

TEST(Culling, offersUndoInALineForWhateverChangedManyPhotos)
{
    TestWindow t(23);
    Heard heard(*t.desktop);
    const auto run = [&](Command command) { return [&t, command] { t.window->commands().run(command); }; };
    const auto named = [&]<typename Widget>(Widget*, const char* name) {
        for (auto* const widget : t.window->findChildren<Widget*>())
            if (widget->accessibleName() == name)
                return widget;
        throw std::out_of_range(name);
    };
    const auto type = [&] {
        auto* const field = named(static_cast<QPlainTextEdit*>(nullptr), "Title");
        QTest::qWait(50); // what they have is read
        field->setFocus();
        QTest::keyClicks(field, "Kyoto");
        run(Command::find)(); // keeps what was typed
    };
    const auto slide = [&] {
        auto* const slider = named(static_cast<QSlider*>(nullptr), "Exposure");
        slider->setSliderDown(true);
        slider->setValue(50);
        slider->setSliderDown(false);
    };
    t.store().select({1, 2});
    t.press(Qt::Key_P);
    EXPECT_TRUE(heard.notices.empty());
    struct Case {
        std::function<void()> act;
        const char* said;
    };
    for (const auto& [act, said] :
        {Case{run(Command::pick), "Pick: 21 photos."}, {type, "Change Title: 23 photos."},
            {slide, "Change Exposure: 23 photos."}, {run(Command::rotateLeft), "Rotate Left: 23 photos."},
            {run(Command::stack), "Stack: 23 photos."}, {run(Command::unstack), "Unstack: 23 photos."}}) {
        t.press(Qt::Key_Escape);
        t.press(Qt::Key_A, Qt::ControlModifier);
        heard.notices.clear();
        act();
        ASSERT_EQ(heard.notices.size(), 1U) << said;
        EXPECT_EQ(heard.notices[0].text, said);
        EXPECT_EQ(heard.notices[0].undoes, t.store().undoStep());
    }
    t.press(Qt::Key_Z, Qt::ControlModifier);
    t.press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(heard.notices.size(), 1U) << "nothing new was done";
}

TEST(Culling, deleteSaysThatItRejects)
{
    TestWindow t(2);
    const Heard heard(*t.desktop);
    t.store().select({1});
    t.press(Qt::Key_Delete);
    EXPECT_TRUE(t.store().catalog().photo(1)->isRejected());
    ASSERT_EQ(heard.notices.size(), 1U);
    EXPECT_NE(heard.notices[0].text.find("Rejected 1 photo"), std::string::npos);
}

TEST(Culling, keysBelongToAFieldWhileTypingAndEscapeLeavesIt)
{
    TestWindow t(2);
    t.store().select({1});
    t.press(Qt::Key_F, Qt::ControlModifier);
    auto* const field = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_TRUE(field);
    for (const auto key : {Qt::Key_5, Qt::Key_X, Qt::Key_Space})
        t.press(key);
    EXPECT_EQ(field->text(), "5x ");
    EXPECT_EQ(t.listed(1).rating, 0);
    t.press(Qt::Key_Escape);
    t.press(Qt::Key_5);
    EXPECT_EQ(t.listed(1).rating, 5);
}

TEST(Culling, arrowsMoveAndShiftExtends)
{
    TestWindow t(3);
    t.press(Qt::Key_Right); // the first one, where none was chosen
    EXPECT_EQ(t.store().selection(), IDs{1});
    t.press(Qt::Key_Right);
    t.press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(t.store().selection(), (IDs{2, 3}));
    t.press(Qt::Key_Home);
    EXPECT_EQ(t.store().selection(), IDs{1});
    t.press(Qt::Key_E);
    EXPECT_EQ(t.desktop->browser().mode(), ViewMode::viewer);
    t.press(Qt::Key_Escape);
    EXPECT_EQ(t.desktop->browser().mode(), ViewMode::grid);
    EXPECT_EQ(t.store().selection(), IDs{1});
}

TEST(Culling, controlChoosesSinglePhotosApart)
{
    TestWindow t(5);
    t.press(Qt::Key_Right);
    t.press(Qt::Key_Right, Qt::ControlModifier);
    t.press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(t.store().selection(), IDs{1}) << "moving selects nothing";
    t.press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(t.store().selection(), (IDs{1, 3}));
    t.press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(t.store().selection(), IDs{1});
    t.press(Qt::Key_Right);
    EXPECT_EQ(t.store().selection(), IDs{4}) << "from where the keys are";
    t.press(Qt::Key_Right, Qt::ControlModifier);
    removePhotos(t.store(), IDs{5});
    t.press(Qt::Key_Left);
    EXPECT_EQ(t.store().selection(), IDs{3}) << "from the selected one, as where they were is gone";
}

TEST(Culling, saysWhereItIsInWords)
{
    TestWindow t(3);
    auto* const grid = t.window->centre();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(grid)->role(), QAccessible::List);
    t.store().select({1});
    t.press(Qt::Key_Right);
    EXPECT_TRUE(grid->accessibleDescription().startsWith("b.jpg, unrated")) << "when the cell changes";
    t.press(Qt::Key_P);
    EXPECT_TRUE(grid->accessibleDescription().startsWith("b.jpg, unrated, flagged")) << "when its marks do";
    EXPECT_TRUE(grid->accessibleDescription().endsWith(", 2 of 3"));
    t.desktop->say("Done.");
    int lines = 0;
    for (auto* const widget : t.window->statusBar()->findChildren<QWidget*>())
        if (auto* const spoken = QAccessible::queryAccessibleInterface(widget);
            spoken->role() == QAccessible::Notification)
            lines += spoken->text(QAccessible::Name) == "Done.";
    EXPECT_EQ(lines, 1);
}

TEST(Compare, goesOnBehindThePhotoThatAMarkTookAway)
{
    for (const auto keys : {Qt::NoModifier, Qt::ShiftModifier}) {
        TestWindow t(4);
        t.store().select({2, 3});
        t.desktop->browser().setCurrent(3);
        t.press(Qt::Key_C); // 3 on the left, 2 beside it
        ASSERT_EQ(t.desktop->browser().current(), 2);
        t.press(Qt::Key_X, keys);
        EXPECT_EQ(t.desktop->browser().current(), 4) << "with " << int(keys);
    }
}

TEST(Compare, leftAtOnceComesBackToThePhotoItWasBegunWith)
{
    TestWindow t(4);
    t.store().select({2});
    for (const auto& [steps, then] : {std::pair(0, 2), {1, 4}}) {
        t.press(Qt::Key_C);
        ASSERT_EQ(t.desktop->browser().current(), 3);
        for (int i = 0; i < steps; ++i)
            t.press(Qt::Key_Right);
        t.press(Qt::Key_Escape);
        EXPECT_EQ(t.desktop->browser().mode(), ViewMode::grid);
        EXPECT_EQ(t.store().selection(), only(then));
    }
}

} // namespace korvo
