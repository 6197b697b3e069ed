#include "tests/app/desktop/PhotoWindow.h"
#include "tests/support/StoreActions.h"

namespace korvo {

TEST(Adjust, aSliderDrawsAtOnceAndIsStoredWhenItIsLetGo)
{
    PhotoWindow t;
    const auto photo = t.add("a.png");
    t.store().select({photo});
    t.open(ViewMode::viewer);
    ASSERT_TRUE(t.isDrawn());
    auto& bar = t.slider("Exposure");
    bar.setSliderDown(true);
    for (const int step : {20, 60, 100})
        bar.setValue(step);
    EXPECT_GT(t.grey([](int value) { return value > 130; }), 130);
    EXPECT_FALSE(t.listed(photo).hasEdits()) << "stored before it was let go";
    const auto* const undo = t.window->commands().action(Command::undo);
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_EQ(undo->text(), "Undo Change Exposure") << "it takes back what is open";
    bar.setSliderDown(false);
    EXPECT_EQ(t.listed(photo).edits(), (PhotoEdits{.exposure = 1}));
    t.press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(t.listed(photo).hasEdits()) << "more than one step";
    EXPECT_EQ(bar.value(), 0);
    EXPECT_EQ(t.grey(100), 100);

    setEdits(t.store(), std::vector<PhotoID>{photo}, {.exposure = 2, .tint = 5});
    EXPECT_EQ(bar.value(), 200);
    QTest::mouseDClick(&bar, Qt::LeftButton);
    EXPECT_EQ(t.listed(photo).edits(), (PhotoEdits{.tint = 5}));
}

TEST(Adjust, keysOnASliderAreOneStepEvenWhenAnotherPhotoFollows)
{
    PhotoWindow t;
    const auto first = t.add("a.png"), second = t.add("b.png");
    t.store().select({first});
    t.open(ViewMode::viewer);
    auto& bar = t.slider("Tint");
    bar.setValue(3);
    bar.setValue(4);
    t.desktop->browser().step(1);
    EXPECT_EQ(t.listed(first).edits(), (PhotoEdits{.tint = 4}));
    EXPECT_EQ(bar.value(), 0);
    bar.setValue(7);
    t.window->commands().run(Command::undo); // takes back what is seen
    EXPECT_FALSE(t.listed(second).hasEdits());
    EXPECT_EQ(t.listed(first).edits(), (PhotoEdits{.tint = 4}));
    EXPECT_EQ(bar.value(), 0);
}

TEST(Adjust, adjustmentsAreCopiedToManyInOneStep)
{
    PhotoWindow t;
    std::vector<PhotoID> photos;
    for (char name = 'a'; name <= 'j'; ++name)
        photos.push_back(t.add(std::string(1, name) + ".png"));
    setEdits(t.store(), std::vector<PhotoID>{photos[0]}, {.exposure = 1, .rotation = 1});
    setEdits(t.store(), std::vector<PhotoID>{photos[1]}, {.tint = 3, .rotation = 2});
    auto& commands = t.window->commands();
    EXPECT_FALSE(commands.action(Command::pasteAdjustments)->isEnabled());
    t.store().select({photos[0]});
    t.desktop->browser().setCurrent(photos[0]);
    commands.run(Command::copyAdjustments);
    t.store().select({photos.begin() + 1, photos.end()});
    commands.run(Command::pasteAdjustments);
    EXPECT_EQ(t.listed(photos[1]).edits(), (PhotoEdits{.exposure = 1, .rotation = 2}));
    for (std::size_t i = 2; i < photos.size(); ++i)
        EXPECT_EQ(t.listed(photos[i]).edits(), (PhotoEdits{.exposure = 1}));
    t.store().undo();
    EXPECT_EQ(t.listed(photos[1]).edits(), (PhotoEdits{.tint = 3, .rotation = 2}));
    EXPECT_FALSE(t.listed(photos[9]).hasEdits());
}

TEST(Adjust, autoLooksAtThePhotosInTheBackground)
{
    PhotoWindow t;
    const auto dark = t.add("a.png", 40);
    t.store().select({dark});
    t.window->commands().run(Command::autoAdjust);
    ASSERT_TRUE(QTest::qWaitFor([&] { return t.listed(dark).hasEdits(); }, wait));
    EXPECT_EQ(t.listed(dark).edits().exposure, 1.25);
    EXPECT_EQ(t.store().undoTitle(), "Auto Enhance");
}

TEST(Adjust, autoEnhanceWaitsForAStepThatTakesLong)
{
    PhotoWindow t(std::chrono::milliseconds(0));
    const auto dark = t.add("a.png", 40);
    t.settleStore();
    t.store().select({dark});
    t.window->commands().run(Command::autoAdjust);
    const auto mayEnd = t.beginStep();
    ASSERT_TRUE(QTest::qWaitFor([&] { return t.desktop->jobs().running().empty(); }, wait));
    EXPECT_FALSE(t.listed(dark).hasEdits());
    *mayEnd = true;
    ASSERT_TRUE(QTest::qWaitFor([&] { return t.listed(dark).hasEdits(); }, wait));
    EXPECT_EQ(t.store().undoTitle(), "Auto Enhance");
    EXPECT_TRUE(t.visibleButton("Undo"));
}

TEST(Adjust, aSlidersChangeOfVeryManyPhotosOutlivesTheWindow)
{
    PhotoWindow t(std::chrono::milliseconds(0));
    const auto ids = t.selectMany();
    Database other(t.catalogFile());
    auto writing = std::make_optional<Transaction>(other);
    t.slider("Exposure").setValue(100);
    t.window->commands().settle();
    ASSERT_TRUE(t.store().longStep());
    t.window = nullptr;
    writing.reset();
    t.store().finishLongStep();
    for (const auto id : {ids.front(), ids.back()})
        EXPECT_EQ(t.store().catalog().photo(id)->edits(), (PhotoEdits{.exposure = 1}));
}

} // namespace korvo
