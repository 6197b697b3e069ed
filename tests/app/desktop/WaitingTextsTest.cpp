// Texts of the Info tab around steps of very many photos, which the window does not wait for.

#include "tests/app/desktop/InfoFields.h"

#include <QTimer>

namespace korvo {

TEST(WaitingTexts, quittingWaitsForAStepThatTakesLongAndKeepsWhatWasTypedMeanwhile)
{
    const auto quit = [](TestWindow& t) { t.window->commands().run(Command::quit); };
    const auto endSession = [](TestWindow& t) { t.window->quitUnasked(); };
    for (const auto& end : {std::function<void(TestWindow&)>(quit), {endSession}}) {
        TestWindow t(1, std::chrono::milliseconds(0));
        t.settleStore();
        t.store().select({1});
        settle();
        const auto mayEnd = t.beginStep();
        type(t, "Title", "First");
        std::thread ending([mayEnd] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            *mayEnd = true;
        });
        QTimer::singleShot(0, t.window.get(), [&] { end(t); });
        QApplication::exec();
        ending.join();
        EXPECT_FALSE(t.visibleButton("Close")) << "nothing has failed";
        EXPECT_EQ(t.store().catalog().photo(1)->metadata.title, "First");
        EXPECT_EQ(t.store().catalog().photo(1)->label, PhotoLabel::red);
    }
}

TEST(WaitingTexts, aTextThatIsTypedDuringAStepThatTakesLongIsStoredAfterIt)
{
    TestWindow t(2, std::chrono::milliseconds(0));
    t.settleStore();
    t.store().select({1});
    settle();
    const auto mayEnd = t.beginStep();
    type(t, "Title", "First");
    t.store().select({2});
    settle();
    EXPECT_EQ(field(t, "Title").toPlainText(), "") << "it is the other photo's";
    t.store().select({1});
    settle();
    EXPECT_EQ(field(t, "Title").toPlainText(), "First") << "it is not lost";
    *mayEnd = true;
    t.settleStore();
    EXPECT_EQ(t.listed(1).metadata.title, "First");
    EXPECT_EQ(t.listed(2).metadata.title, "");
    EXPECT_FALSE(t.visibleButton("Close"));
}

TEST(WaitingTexts, keywordsThatWaitedInVainCanBeTakenAgain)
{
    TestWindow t(2, std::chrono::milliseconds(0));
    t.settleStore();
    t.store().select({1, 2});
    settle();
    Database other(t.catalogFile());
    std::optional<Transaction> writing;
    const auto inBetween = t.store().stepEnded.connect([&](StepOutcome) { writing.emplace(other); });
    const auto mayEnd = t.beginStep();
    type(t, "Keywords", "shed");
    t.window->commands().settle();
    type(t, "Keywords", "barn");
    t.store().select({1});
    settle();
    t.store().select({1, 2});
    ASSERT_TRUE(QTest::qWaitFor([&] { return field(t, "Keywords").toPlainText() == "barn"; }));
    *mayEnd = true;
    t.settleStore();
    writing.reset();
    EXPECT_EQ(field(t, "Keywords").toPlainText(), "barn");
    t.window->commands().settle();
    EXPECT_EQ(t.store().catalog().photo(2)->metadata.keywords, "barn");
}

TEST(WaitingTexts, aTextForVeryManyPhotosComesBackWhenItCouldNotBeStored)
{
    TestWindow t(0, std::chrono::milliseconds(0));
    const auto ids = t.selectMany();
    settle();
    t.hideCatalog();
    type(t, "Title", "First");
    t.press(Qt::Key_Tab);
    t.settleStore();
    settle();
    t.bringCatalogBack();
    EXPECT_EQ(field(t, "Title").toPlainText(), "First");
    t.window->commands().run(Command::sidebar);
    t.settleStore();
    EXPECT_EQ(t.store().catalog().photo(ids.back())->metadata.title, "First");
}

TEST(WaitingTexts, addTheirKeywordsToWhatTheStepLeaves)
{
    for (const auto& photos : {std::vector<PhotoID>{1}, std::vector<PhotoID>{1, 2}}) {
        TestWindow t(2, std::chrono::milliseconds(0));
        t.settleStore();
        t.store().select(photos);
        settle();
        const auto mayEnd = t.beginStep([&](Catalog& catalog) {
            catalog.changeMetadata(photos, {.keywords = SharedText("trip")}, WriteBack::pending);
        });
        for (const char* const text : {"bran", "barn"}) { // corrected
            type(t, "Keywords", text);
            t.window->commands().settle();
        }
        *mayEnd = true;
        t.settleStore();
        for (const PhotoID photo : photos)
            EXPECT_EQ(t.store().catalog().photo(photo)->metadata.keywords, "trip, barn");
    }
}

TEST(WaitingTexts, addKeywordsThatAreBeingTypedAsTheStepEnds)
{
    TestWindow t(1, std::chrono::milliseconds(0));
    t.settleStore();
    t.store().select({1});
    settle();
    const auto keywords = [&] { return t.store().catalog().photo(1)->metadata.keywords; };
    const auto mayEnd = t.beginStep([](Catalog& catalog) {
        catalog.changeMetadata(only(1), {.keywords = SharedText("trip")}, WriteBack::pending);
    });
    type(t, "Keywords", "barn");
    *mayEnd = true;
    t.settleStore();
    settle();
    t.window->commands().settle();
    EXPECT_EQ(keywords(), "trip, barn");
    const auto mayEndAgain = t.beginStep();
    settle();
    type(t, "Keywords", "barn, trip");
    t.window->commands().settle();
    *mayEndAgain = true;
    t.settleStore();
    EXPECT_EQ(keywords(), "barn, trip") << "which the step left as they were";
}

TEST(WaitingTexts, takeOutAKeywordThatStoodThereOnceTheTypingWasTakenBack)
{
    TestWindow t(1, std::chrono::milliseconds(0));
    t.settleStore();
    t.store().select({1});
    settle();
    const auto mayEnd = t.beginStep([](Catalog& catalog) {
        catalog.changeMetadata(only(1), {.keywords = SharedText("trip")}, WriteBack::pending);
    });
    type(t, "Keywords", "barn");
    *mayEnd = true;
    t.settleStore();
    settle();
    t.window->commands().run(Command::undo);
    EXPECT_EQ(field(t, "Keywords").toPlainText(), "trip");
    type(t, "Keywords", "shed");
    t.window->commands().settle();
    EXPECT_EQ(t.store().catalog().photo(1)->metadata.keywords, "shed");
}

TEST(WaitingTexts, areStoredWithTheKeywordsBeforeThemThatCouldNotBe)
{
    TestWindow t(1, std::chrono::milliseconds(0));
    t.settleStore();
    t.store().select({1});
    settle();
    Database other(t.catalogFile());
    std::optional<Transaction> writing;
    const auto inBetween = t.store().stepEnded.connect([&](StepOutcome) { writing.emplace(other); });
    bool hasFailed = false;
    const auto told = t.desktop->noticed.connect([&](const Notice& notice) {
        hasFailed |= notice.kind == Notice::Kind::error;
        writing.reset();
    });
    const auto mayEnd = t.beginStep();
    for (const char* const text : {"shed", "shed, cow"}) {
        type(t, "Keywords", text);
        t.window->commands().settle();
    }
    *mayEnd = true;
    t.settleStore();
    EXPECT_TRUE(hasFailed) << "the first of them";
    EXPECT_EQ(t.store().catalog().photo(1)->metadata.keywords, "shed, cow");
}

} // namespace korvo
