#include "app/desktop/sheets/Sheets.h"
#include "app/desktop/Texts.h"
#include "base/Dates.h"
#include "catalog/Stacks.h"
#include "catalog/store/LibraryActions.h"
#include "imports/ImportOptions.h"
#include "imports/NamingPreset.h"
#include "tests/app/desktop/TestWindow.h"
#include "tests/platform/DiskService.h"
#include "tests/support/ApertureBundle.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>

#include <sys/mount.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace korvo {

namespace {

template <typename Widget>
Widget& named(QWidget& sheet, const QString& name)
{
    for (auto* const widget : sheet.findChildren<Widget*>())
        if (widget->isVisibleTo(&sheet)
            && (widget->accessibleName() == name || widget->property("text") == name))
            return *widget;
    throw std::out_of_range(name.toStdString());
}

bool says(const QWidget& sheet, const QString& text)
{
    for (const auto* const label : sheet.findChildren<QLabel*>())
        if (label->text().contains(text))
            return true;
    return false;
}

bool comesToSay(const QWidget& sheet, const char* text)
{
    return QTest::qWaitFor([&] { return says(sheet, text); }, 10'000);
}

void click(QWidget& sheet, const char* button)
{
    named<QPushButton>(sheet, button).click();
}

} // namespace

TEST(SmartAlbumSheet, countsWhileTypingAndMakesTheAlbum)
{
    TestWindow t(3);
    setRating(t.store(), std::vector<PhotoID>{1, 2}, 4);
    QWidget& sheet = *showSmartAlbumSheet(*t.window, std::nullopt);
    EXPECT_TRUE(comesToSay(sheet, "2 photos match")) << "three stars to begin with";
    auto& value = named<QLineEdit>(sheet, "Value");
    value.setText("many");
    EXPECT_TRUE(says(sheet, "“Rating” needs a number, as 3, not “many”"));
    EXPECT_TRUE(comesToSay(sheet, "0 photos match"));
    value.setText("4");
    EXPECT_FALSE(named<QPushButton>(sheet, "Create").isEnabled()) << "it has no name yet";
    sheet.findChildren<QLineEdit*>().front()->setText("Best");
    click(sheet, "Create");
    EXPECT_EQ(t.store().tree().smartAlbums.at(0).name, "Best");
    EXPECT_EQ(t.store().list().shown().size(), 2U) << "it is shown";
}

TEST(SmartAlbumSheet, keepsRulesThatCannotBeReadHere)
{
    TestWindow t(1);
    constexpr auto later = R"({"rules":[{"field":"mood","op":"is","value":"glad"}]})";
    const auto id = t.store().catalog().createSmartAlbum("Mood", later);
    QWidget& sheet = *showSmartAlbumSheet(*t.window, id);
    EXPECT_TRUE(says(sheet, "cannot be read")) << "and why";
    EXPECT_TRUE(says(sheet, later));
    sheet.findChildren<QLineEdit*>().front()->setText("Moods");
    click(sheet, "Save");
    EXPECT_EQ(t.store().catalog().smartAlbum(id).name, "Moods");
    EXPECT_EQ(t.store().catalog().smartAlbum(id).rules, later);
}

TEST(AutoStackSheet, previewsBeforeAnythingIsWritten)
{
    TestWindow t(3);
    const auto shoot = [&](PhotoID id, double time) { t.store().catalog().shiftCaptureDate(id, time); };
    shoot(1, 1000);
    shoot(2, 1020);
    shoot(3, 5000);
    t.store().reload();
    QWidget& sheet = *showAutoStackSheet(*t.window);
    EXPECT_TRUE(comesToSay(sheet, "Within 10 seconds: No stack"));
    EXPECT_FALSE(named<QPushButton>(sheet, "Stack").isEnabled());
    named<QSlider>(sheet, "Interval in seconds").setValue(20);
    EXPECT_TRUE(comesToSay(sheet, "Within 20 seconds: 1 stack from 2 photos"));
    EXPECT_TRUE(stacksIn(t.store().catalog().database()).empty());
    setRating(t.store(), only(3), 4);
    EXPECT_TRUE(named<QPushButton>(sheet, "Stack").isEnabled()) << "the plan stays until there is a new one";
    click(sheet, "Stack");
    EXPECT_EQ(stacksIn(t.store().catalog().database()).size(), 1U);
    EXPECT_EQ(t.store().undoTitle(), "Auto-Stack");
}

TEST(ImportSheet, importsWhatIsPickedAndLeavesWhatTheLibraryHas)
{
    TestWindow t(0);
    t.folder.write("card/DCIM/100TEST/IMG_1.JPG", "one");
    t.folder.write("card/DCIM/100TEST/IMG_2.JPG", "two");
    QWidget& sheet = *showImportWindow(*t.window, {t.folder / "card"});
    const auto import = [&](const char* expected) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return says(sheet, "will be imported"); }, 10'000));
        named<QLineEdit>(sheet, "Copy into a folder").setText((t.folder / "Copies").c_str());
        for (auto* const button : sheet.findChildren<QPushButton*>())
            if (button->text().startsWith("Import"))
                button->click();
        EXPECT_TRUE(comesToSay(sheet, expected));
    };
    import("2 photos imported, 0 already in the library, 0 failed");
    EXPECT_TRUE(std::filesystem::exists(t.folder / "Copies/IMG_1.JPG"));
    EXPECT_TRUE(comesToSay(sheet, "0 of 2 photos will be imported, 2 are already in the library"));
    EXPECT_EQ(t.store().undoTitle(), "Import 2 Photos");
    t.store().undo();
    EXPECT_TRUE(t.store().list().items().empty());
    EXPECT_TRUE(std::filesystem::exists(t.folder / "Copies/IMG_1.JPG")) << "files stay";
    t.store().redo();
    EXPECT_EQ(t.store().list().shown().size(), 2U);
    auto* const list = sheet.findChild<QListView*>();
    list->setCurrentIndex(list->model()->index(1, 0));
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_TRUE(says(sheet, "1 of 2 photos will be imported"));
    import("1 photo imported, 1 already in the library, 0 failed");
    EXPECT_TRUE(std::filesystem::exists(t.folder / "Copies/IMG_2-2.JPG"))
        << "the same again, beside the other";
    sheet.close();
}

TEST(ImportSheet, stopsItsImport)
{
    TestWindow t(0);
    constexpr std::size_t many = 300;
    for (std::size_t i = 0; i < many; ++i)
        t.folder.write("card/DCIM/100TEST/IMG_" + std::to_string(i) + ".JPG", std::to_string(i));
    QWidget& sheet = *showImportWindow(*t.window, {t.folder / "card"});
    EXPECT_TRUE(comesToSay(sheet, "300 of 300 photos will be imported"));
    named<QLineEdit>(sheet, "Copy into a folder").setText((t.folder / "Copies").c_str());
    click(sheet, "Import 300 Photos");
    click(sheet, "Stop");
    EXPECT_TRUE(comesToSay(sheet, "0 failed"));
    EXPECT_LT(t.store().list().items().size(), many);
    EXPECT_THROW(click(sheet, "Stop"), std::out_of_range) << "there is nothing to stop";
    sheet.close();
}

TEST(ImportSheet, asksForTheProjectBeforeItStarts)
{
    TestWindow t(0);
    createProject(t.store(), "not shown", "project", {});
    t.folder.write("card/DCIM/100TEST/IMG_1.JPG", "one");
    QWidget& sheet = *showImportWindow(*t.window, {t.folder / "card"});
    EXPECT_TRUE(comesToSay(sheet, "photo will be imported"));
    named<QLineEdit>(sheet, "Copy into a folder").setText((t.folder / "Copies").c_str());
    for (const auto& [kind, expected] :
        {std::pair{"New project", "Name the project that"}, {"Selected", "Choose the project that"}}) {
        named<QComboBox>(sheet, "Project").setCurrentText(kind);
        QString told;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            if (auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                told = box->text();
                box->reject();
            }
        });
        timer.start(0);
        click(sheet, "Import 1 Photo");
        EXPECT_TRUE(told.startsWith(expected)) << told.toStdString();
    }
    EXPECT_FALSE(std::filesystem::exists(t.folder / "Copies"));
    named<QComboBox>(sheet, "Selected project").setCurrentIndex(0);
    click(sheet, "Import 1 Photo");
    EXPECT_TRUE(comesToSay(sheet, "1 photo imported"));
    EXPECT_EQ(t.store().tree().projects.at(0).count, 1);
    sheet.close();
}

TEST(ImportSheet, remembersWhatIsNotOfOneImport)
{
    TestWindow t(0);
    t.folder.write("card/DCIM/100TEST/IMG_1.JPG", "one");
    const auto open = [&]() -> QWidget& {
        QWidget& sheet = *showImportWindow(*t.window, {t.folder / "card"});
        EXPECT_TRUE(comesToSay(sheet, "photo will be imported"));
        return sheet;
    };
    const std::array<std::pair<const char*, QString>, 4> kept{
        {{"Copy into a folder", (t.folder / "Copies").c_str()}, {"Pattern", "{date}-{seq}"},
            {"Creator", "Ann"}, {"Copyright", "© Ann"}}};
    QWidget& sheet = open();
    named<QComboBox>(sheet, "File names").setCurrentText("Rename");
    named<QComboBox>(sheet, "Project").setCurrentText("One project per day");
    named<QLineEdit>(sheet, "Keywords").setText("sea");
    for (const auto& [field, text] : kept)
        named<QLineEdit>(sheet, field).setText(text);
    click(sheet, "Import 1 Photo");
    EXPECT_TRUE(comesToSay(sheet, "1 photo imported"));
    sheet.close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !t.window->findChild<QDialog*>(); }));
    QWidget& again = open();
    EXPECT_EQ(named<QComboBox>(again, "Project").currentText(), "One project per day");
    EXPECT_EQ(named<QLineEdit>(again, "Keywords").text(), "");
    for (const auto& [field, text] : kept)
        EXPECT_EQ(named<QLineEdit>(again, field).text(), text);
    again.close();
}

TEST(ImportSheet, takesACardInAndLetsItGo)
{
    TestWindow t(0);
    const auto card = t.folder / "card";
    std::filesystem::create_directories(card);
    if (mount("tmpfs", card.c_str(), "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "mounting is not allowed here: " << std::strerror(errno);
    t.folder.write("card/DCIM/IMG_1.JPG", "no photo, but a file");
    struct stat status { };
    stat(card.c_str(), &status);
    DiskService service;
    service.showCard(status.st_dev, card);
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", service.address().c_str());
    QWidget& sheet = *showImportWindow(*t.window);
    auto& places = *sheet.findChild<QTreeWidget*>();
    QList<QTreeWidgetItem*> found;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        found = places.findItems("EOS_DIGITAL", Qt::MatchExactly | Qt::MatchRecursive);
        return !found.isEmpty();
    }));
    Q_EMIT places.itemClicked(found.front(), 0);
    EXPECT_TRUE(comesToSay(sheet, "1 of 1 photo will be imported"));
    named<QLineEdit>(sheet, "Copy into a folder").setText((t.folder / "Copies").c_str());
    named<QCheckBox>(sheet, "Eject after import").setChecked(true);
    click(sheet, "Import 1 Photo");
    EXPECT_TRUE(
        comesToSay(sheet, "1 photo imported, 0 already in the library, 0 failed. EOS_DIGITAL ejected."));
    EXPECT_FALSE(std::filesystem::exists(card / "DCIM"));
    EXPECT_TRUE(std::filesystem::exists(t.folder / "Copies/IMG_1.JPG"));
    sheet.close();
    umount2(card.c_str(), MNT_DETACH); // in case it failed
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

TEST(ApertureSheet, goesOnWhenItIsClosedAndComesBackWithWhatItRuns)
{
    TestWindow t(0);
    ApertureBundle bundle(t.folder / "My.aplibrary");
    bundle.add({.name = "a.jpg"});
    ApertureBundle::finish(std::move(bundle));
    QWidget& sheet = *showApertureImport(*t.window);
    named<QLineEdit>(sheet, "Aperture Library").setText((t.folder / "My.aplibrary").c_str());
    click(sheet, "Import");
    dynamic_cast<QDialog&>(sheet).reject(); // as Esc does
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_EQ(showApertureImport(*t.window), &sheet);
    EXPECT_TRUE(named<QPushButton>(sheet, "Stop").isEnabled());
    EXPECT_TRUE(comesToSay(sheet, "1 photo"));
    EXPECT_NO_THROW(named<QPushButton>(sheet, "Open the New Library"));
    EXPECT_THROW(named<QPushButton>(sheet, "Stop"), std::out_of_range);
    EXPECT_TRUE(std::filesystem::exists(t.folder / "My Korvo/catalog.sqlite"));
    sheet.close();
}

TEST(ImportSheet, listsTheProjectsThatThereAreWhileItIsOpen)
{
    TestWindow t(0);
    QWidget& sheet = *showImportWindow(*t.window, {});
    named<QComboBox>(sheet, "Project").setCurrentIndex(static_cast<int>(ImportOptions::Project::chosen));
    auto& projects = named<QComboBox>(sheet, "Selected project");
    const auto trip = createProject(t.store(), "Trip", "project", {});
    EXPECT_EQ(projects.itemText(0), "Trip");
    projects.showPopup();
    deleteProject(t.store(), trip);
    EXPECT_EQ(projects.count(), 1) << "a line may be under the pointer";
    projects.hidePopup();
    EXPECT_TRUE(QTest::qWaitFor([&] { return projects.count() == 0; }));
    sheet.close();
}

TEST(ShiftDatesSheet, showsAndShiftsTheFirstPhoto)
{
    TestWindow t(2);
    t.store().catalog().shiftCaptureDate(2, 1e9);
    t.store().reload();
    t.store().select({2});
    QWidget& sheet = *showShiftDates(*t.window);
    EXPECT_FALSE(named<QPushButton>(sheet, "Shift 1 Photo").isEnabled());
    const auto before = *t.listed(2).captureDate;
    named<QSpinBox>(sheet, "hours").setValue(2);
    named<QSpinBox>(sheet, "seconds").setValue(5);
    named<QComboBox>(sheet, "Direction").setCurrentText("Earlier");
    EXPECT_TRUE(says(sheet, qt(localDateTime(before) + " → " + localDateTime(before - 7205))));
    click(sheet, "Shift 1 Photo");
    EXPECT_TRUE(t.visibleButton("Stop"));
    EXPECT_EQ(t.refused(Command::quit),
        "“Shift Capture Dates” is still going on.\nWhat is done stays; the other photos stay as they are.\n"
        "Quitting ends it here.");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !t.visibleButton("Stop"); }));
    EXPECT_EQ(*t.listed(2).captureDate, before - 7205);
    EXPECT_EQ(t.store().undoTitle(), "Shift Capture Dates");
}

TEST(PositionSheet, readsWhatPeopleWriteAndClearsIt)
{
    TestWindow t(1);
    t.store().select({1});
    QWidget& sheet = *showSetPosition(*t.window);
    auto& text = named<QLineEdit>(sheet, "Latitude and longitude");
    text.setText("48.137");
    EXPECT_FALSE(named<QPushButton>(sheet, "Set for 1 Photo").isEnabled());
    text.setText("33.5° S, 18.25 E");
    EXPECT_TRUE(says(sheet, "33.50000° S, 18.25000° E"));
    click(sheet, "Set for 1 Photo");
    auto& writeBack = t.desktop->session().writeBack();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !writeBack.isSaving(); }));
    EXPECT_EQ(t.listed(1).latitude, -33.5);
    QWidget& again = *showSetPosition(*t.window);
    EXPECT_TRUE(named<QPushButton>(again, "Set for 1 Photo").isEnabled()) << "it has one now";
    again.close();
    EXPECT_TRUE(t.refused(Command::clearPosition).startsWith("Clear the position of this photo?"));
    EXPECT_TRUE(t.listed(1).latitude);
    QTimer::singleShot(0, [&] { click(*QApplication::activeModalWidget(), "Clear"); });
    t.window->commands().run(Command::clearPosition);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !writeBack.isSaving(); }));
    EXPECT_FALSE(t.listed(1).latitude);
    EXPECT_EQ(t.store().undoTitle(), "Clear Position");
}

TEST(NamingSheet, keepsEachChange)
{
    TestWindow t(1);
    QWidget& sheet = *showNamingPresets(*t.window);
    const auto stored = [&] { return NamingPreset::load(t.defaults); };
    EXPECT_TRUE(says(sheet, "Example: a.jpg"));
    named<QToolButton>(sheet, "Add a preset").click();
    auto& pattern = *sheet.findChildren<QLineEdit*>().back();
    pattern.clear();
    named<QToolButton>(sheet, "{seq}").click();
    EXPECT_TRUE(says(sheet, "Example: 001.jpg"));
    sheet.close();
    EXPECT_EQ(stored().back().pattern, "{seq}");
    EXPECT_EQ(stored().back().name, "New Preset");
    QWidget& again = *showNamingPresets(*t.window);
    click(again, "Restore Defaults");
    EXPECT_EQ(stored().size(), NamingPreset::defaults().size());
    click(again, "Undo");
    EXPECT_EQ(stored().back().name, "New Preset");
    again.findChild<QListWidget*>()->setCurrentRow(0);
    named<QToolButton>(again, "Delete the selected preset").click();
    named<QToolButton>(again, "Add a preset").click();
    EXPECT_FALSE(again.findChild<QPushButton*>("undo")->isVisible()) << "it would take away the new one";
}

TEST(Sheets, openByTheirCommands)
{
    TestWindow t(1);
    for (const auto command : {Command::importPhotos, Command::importAperture, Command::newSmartAlbum,
             Command::autoStack, Command::namingPresets, Command::settings, Command::keys, Command::about}) {
        t.window->commands().run(command);
        auto* const sheet = t.window->findChild<QDialog*>();
        ASSERT_TRUE(sheet) << static_cast<int>(command);
        EXPECT_TRUE(sheet->isVisible());
        EXPECT_FALSE(sheet->windowTitle().isEmpty());
        sheet->close();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !t.window->findChild<QDialog*>(); }))
            << "it goes when it is closed";
    }
}

} // namespace korvo
