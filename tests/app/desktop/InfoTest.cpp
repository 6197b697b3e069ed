#include "app/desktop/info/DescriptiveForm.h"
#include "base/Json.h"
#include "catalog/store/LibraryActions.h"
#include "tests/app/desktop/InfoFields.h"
#include "tests/support/StoreActions.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTextDocument>

namespace korvo {

namespace {

const QPushButton& button(TestWindow& t, const char* text)
{
    for (const auto* const found : t.window->findChildren<QPushButton*>())
        if (found->text() == text)
            return *found;
    throw std::out_of_range(text);
}

} // namespace

TEST(Info, takesNoTextOfAFileForHtml)
{
    PhotoWindow t;
    const auto id = t.add("IMG_<b>1</b>.png");
    t.store().catalog().storeCameraData(id, {.camera = "Canon <img src=\"file:///dev/zero\"> R5"});
    t.store().reload();
    t.store().select({id});
    int dangerous = 0;
    const auto isShown = [&] {
        dangerous = 0;
        for (const auto* const label : t.window->findChildren<QLabel*>())
            if (Qt::mightBeRichText(label->text())) {
                ++dangerous;
                EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
            }
        return dangerous >= 2; // its name and its camera
    };
    EXPECT_TRUE(QTest::qWaitFor(isShown, wait)) << dangerous;
    for (auto* const label : t.window->findChildren<QLabel*>())
        EXPECT_FALSE(label->toolTip().contains("<img")) << label->toolTip().toStdString();
}

TEST(Info, writesOnlyTheTouchedFieldOfManyAndAsOneStep)
{
    TestWindow t(3);
    setMetadata(
        t.store(), std::vector<PhotoID>{1}, {.title = SharedText("One"), .creator = SharedText("Ann")});
    t.store().select({1, 2});
    settle();
    EXPECT_EQ(field(t, "Title").toPlainText(), "");
    EXPECT_EQ(field(t, "Title").placeholderText(), "Multiple values");
    EXPECT_EQ(field(t, "Caption").placeholderText(), "") << "empty in both";
    type(t, "Caption", "A bridge 5");
    EXPECT_EQ(t.listed(1).metadata.caption, "") << "not before the field is left";
    t.press(Qt::Key_Tab);
    EXPECT_EQ(t.listed(1).metadata.caption, "A bridge 5");
    EXPECT_EQ(t.listed(2).metadata.caption, "A bridge 5");
    EXPECT_EQ(t.listed(1).metadata.title, "One");
    EXPECT_EQ(t.listed(1).rating, 0) << "the number belonged to the field";
    EXPECT_EQ(t.store().undoTitle(), "Change Caption");
    t.store().undo();
    settle();
    EXPECT_EQ(t.listed(2).metadata.caption, "");
    EXPECT_EQ(field(t, "Caption").toPlainText(), "");
    EXPECT_EQ(t.listed(1).metadata.creator, "Ann");
}

TEST(Info, keepsATextForThePhotosItWasTypedFor)
{
    TestWindow t(2);
    t.store().select({1});
    settle();
    type(t, "Title", "First");
    t.store().select({2});
    settle();
    EXPECT_EQ(t.listed(1).metadata.title, "First");
    EXPECT_EQ(t.listed(2).metadata.title, "");
    EXPECT_EQ(field(t, "Title").toPlainText(), "");
}

TEST(Info, keepsATextUntilItIsStored)
{
    TestWindow t(1);
    t.store().select({1});
    settle();
    type(t, "Title", "First");
    auto& database = t.store().catalog().database();
    database.exec("PRAGMA query_only = ON");
    t.press(Qt::Key_Tab);
    EXPECT_EQ(field(t, "Title").toPlainText(), "First");
    database.exec("PRAGMA query_only = OFF");
    field(t, "Title").setFocus();
    t.window->commands().run(Command::sidebar);
    EXPECT_EQ(t.listed(1).metadata.title, "First") << "a command acts on what was typed before it";
}

TEST(Info, takesNoTextForPhotosThatAreNotReadYet)
{
    TestWindow t(3);
    DescriptiveForm form(*t.desktop);
    CommonMetadata one;
    one.add({.title = SharedText("One")});
    form.setPhotos({1});
    form.show(one);
    form.setPhotos({2, 3});
    form.waitForTexts();
    QTest::keyClicks(&form.field(0), "more");
    form.setPhotos({});
    EXPECT_EQ(t.listed(2).metadata.title, "");
    form.setPhotos({1});
    form.show(one);
    EXPECT_EQ(form.field(0).text(), "One");
    QTest::keyClicks(&form.field(0), "+");
    form.waitForTexts(); // they are only read again
    EXPECT_TRUE(form.field(0).isTouched());
}

TEST(Info, undoTakesBackTheTypingFirst)
{
    TestWindow t(1);
    setRating(t.store(), std::vector<PhotoID>{1}, 3);
    t.store().select({1});
    settle();
    type(t, "Title", "First");
    auto& commands = t.window->commands();
    commands.refresh(); // as its menu does when it opens
    EXPECT_EQ(commands.action(Command::undo)->text(), "Undo Typing");
    commands.run(Command::undo);
    EXPECT_EQ(field(t, "Title").toPlainText(), "");
    EXPECT_EQ(t.listed(1).rating, 3);
    commands.run(Command::undo);
    EXPECT_EQ(t.listed(1).rating, 0);
}

TEST(Info, aFieldThatIsHiddenLeavesTheKeysToThePhotos)
{
    TestWindow t(1);
    t.store().select({1});
    settle();
    type(t, "Title", "First");
    t.press(Qt::Key_F8);
    EXPECT_EQ(QApplication::focusWidget(), t.window->centre());
    EXPECT_EQ(t.listed(1).metadata.title, "First");
}

TEST(Info, quittingAsksForATextThatCannotBeStored)
{
    TestWindow t(1);
    t.store().select({1});
    settle();
    type(t, "Title", "First");
    t.store().catalog().database().exec("PRAGMA query_only = ON");
    t.press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), t.window->centre()) << "the text waits in its field";
    t.desktop->browser().setMode(ViewMode::viewer);
    t.press(Qt::Key_Escape);
    EXPECT_EQ(t.desktop->browser().mode(), ViewMode::viewer) << "other photos would take its fields";
    EXPECT_EQ(t.refused(Command::quit), "What you changed last could not be stored.\nQuitting now loses it.");
    EXPECT_TRUE(t.window->isVisible());
    EXPECT_EQ(field(t, "Title").toPlainText(), "First");
}

TEST(Info, aCommandIsForThePhotoThatWasTypedForOrForNone)
{
    TestWindow t(3);
    auto& store = t.store();
    store.chooseSource(LibrarySource{LibrarySource::Kind::noAltText, 0, {}});
    store.select({1});
    settle();
    type(t, "ALT Text", "A red barn");
    t.press(Qt::Key_1, Qt::ControlModifier);
    ASSERT_EQ(store.selection(), only(2)) << "the first has left the list";
    EXPECT_EQ(store.catalog().photo(1)->metadata.altText, "A red barn");
    EXPECT_EQ(t.listed(2).label, PhotoLabel::none);
    settle();
    type(t, "ALT Text", "The one before the last");
    t.window->commands().run(Command::newAlbum); // which would ask for a name
    EXPECT_EQ(store.selection(), only(3));
    settle();
    type(t, "ALT Text", "The last one");
    t.window->commands().run(Command::showVersions);
    EXPECT_TRUE(store.list().shown().empty());
    EXPECT_EQ(store.source()->kind, LibrarySource::Kind::noAltText);
}

TEST(Info, photosAndFoldersThatAreDroppedOnAFieldAreNoText)
{
    TestWindow t(1);
    t.store().select({1});
    settle();
    auto& caption = field(t, "Caption");
    const auto take = [&](const QMimeData& data) {
        const QPoint at = caption.viewport()->rect().center();
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(caption.viewport(), &enter);
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(caption.viewport(), &drop);
        return caption.toPlainText();
    };
    QMimeData text, files;
    files.setUrls({QUrl("file:///photos/a.jpg")});
    files.setText("file:///photos/a.jpg");
    text.setText("A bridge");
    EXPECT_EQ(take(files), "");
    EXPECT_EQ(take(text), "A bridge");
}

TEST(Info, worksOffAltTextsWithEnter)
{
    TestWindow t(4);
    t.store().chooseSource(LibrarySource{LibrarySource::Kind::noAltText});
    t.store().select({1});
    settle();
    type(t, "ALT Text", "a cat");
    t.press(Qt::Key_Return);
    settle();
    EXPECT_EQ(t.store().selection(), std::vector<PhotoID>{2});
    t.press(Qt::Key_Return); // passed over
    settle();
    EXPECT_EQ(t.store().selection(), std::vector<PhotoID>{3});
    QTest::keyClicks(&field(t, "ALT Text"), "a dog");
    t.press(Qt::Key_Return);
    settle();
    EXPECT_EQ(t.store().selection(), std::vector<PhotoID>{4});
    t.store().chooseSource(std::nullopt);
    EXPECT_EQ(t.listed(1).metadata.altText, "a cat");
    EXPECT_EQ(t.listed(2).metadata.altText, "");
    EXPECT_EQ(t.listed(3).metadata.altText, "a dog");
}

TEST(Info, offersToRevertAFileThatWasWritten)
{
    TestWindow t(2);
    t.store().catalog().storeMetadataBackup(1, toJson(PhotoMetadata()));
    const auto& revert = button(t, "Revert…");
    t.store().select({1});
    EXPECT_TRUE(QTest::qWaitFor([&] { return revert.isVisible(); }));
    t.store().select({2});
    EXPECT_TRUE(QTest::qWaitFor([&] { return !revert.isVisible(); })) << "its file is as it was found";
    t.store().select({1});
    EXPECT_TRUE(QTest::qWaitFor([&] { return revert.isVisible(); }));
    t.store().select({1, 2});
    EXPECT_TRUE(QTest::qWaitFor([&] { return !revert.isVisible(); })) << "nothing of them waits";
}

TEST(Info, editsTheKeywordsThatManyHaveInCommon)
{
    TestWindow t(2);
    setMetadata(t.store(), std::vector<PhotoID>{1}, {.keywords = SharedText("sea, sky")});
    setMetadata(t.store(), std::vector<PhotoID>{2}, {.keywords = SharedText("sky")});
    t.store().select({1, 2});
    settle();
    EXPECT_EQ(field(t, "Keywords").toPlainText(), "sky");
    type(t, "Keywords", "sky, night");
    t.press(Qt::Key_Tab);
    EXPECT_EQ(t.listed(1).metadata.keywords, "sea, sky, night");
    EXPECT_EQ(t.listed(2).metadata.keywords, "sky, night");
}

TEST(Info, closesTheListOfKnownKeywordsBeforeTheField)
{
    TestWindow t(2);
    setMetadata(t.store(), std::vector<PhotoID>{2}, {.keywords = SharedText("garden")});
    t.store().select({1});
    settle();
    auto& edit = field(t, "Keywords");
    edit.setFocus();
    auto* const popup = edit.findChild<QCompleter*>()->popup();
    EXPECT_TRUE(QTest::qWaitFor([&] { // the known ones are read in the background
        edit.clear();
        QTest::keyClicks(&edit, "gar");
        return popup->isVisible();
    }));
    t.press(Qt::Key_Escape);
    EXPECT_TRUE(edit.hasFocus());
    popup->hide();
    t.press(Qt::Key_Escape);
    EXPECT_FALSE(edit.hasFocus());
    EXPECT_EQ(t.listed(1).metadata.keywords, "gar");
}

} // namespace korvo
