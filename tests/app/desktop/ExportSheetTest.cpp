#include "app/desktop/sheets/ExportSheet.h"
#include "imports/NamingPreset.h"
#include "tests/app/desktop/PhotoWindow.h"

#include <QLineEdit>
#include <QMenu>

namespace korvo {

TEST(ExportSheet, exportsAsAJobWithTheFailuresListed)
{
    PhotoWindow t;
    const auto photo = t.add("a.png", 100, 300, 200);
    const auto missing = t.addFile("missing.jpg");
    ExportSheet sheet(*t.window, {photo, missing});
    sheet.findChild<QLineEdit*>()->setText(QString::fromStdString((t.folder / "out").string()));
    static_cast<QDialog&>(sheet).accept();
    ASSERT_TRUE(QTest::qWaitFor([&] { return t.desktop->jobs().running().empty(); }, wait));
    EXPECT_TRUE(std::filesystem::exists(t.folder / "out" / "a.jpg"));
    const auto& job = *t.desktop->jobs().all().back();
    EXPECT_EQ(job.failures().size(), 1U);
    EXPECT_TRUE(QString::fromStdString(job.summary()).startsWith("Exported 1 photo "));
}

TEST(ExportSheet, exportsPhotosAsAStepThatRunsLeavesThem)
{
    PhotoWindow t(std::chrono::milliseconds(0));
    const auto photo = t.add("a.png", 100, 300, 200);
    t.settleStore();
    const auto mayEnd
        = t.beginStep([&](Catalog& catalog) { catalog.saveEdits(only(photo), {.rotation = 1}); });
    ExportSheet sheet(*t.window, only(photo));
    sheet.findChild<QLineEdit*>()->setText(QString::fromStdString((t.folder / "out").string()));
    static_cast<QDialog&>(sheet).accept();
    EXPECT_TRUE(t.desktop->jobs().running().empty()) << "it waits for the step";
    *mayEnd = true;
    const auto file = t.folder / "out" / "a.jpg";
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(file); }, wait));
    EXPECT_EQ(t.desktop->imageReader().read(file, {}, {}).fullWidth, 200);
}

TEST(ExportSheet, offersPresetsByTheirNames)
{
    TestWindow t(1);
    NamingPreset::save({NamingPreset::make("By Day & Number", "{date}-{seq}")}, t.defaults);
    ExportSheet sheet(*t.window, only(1));
    auto* const menu = sheet.findChild<QMenu*>();
    ASSERT_TRUE(menu);
    Q_EMIT menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_TRUE(menu->actions().at(0)->text().startsWith("By Day && Number"));
    menu->actions().at(0)->trigger();
    EXPECT_EQ(sheet.plan().pattern, "{date}-{seq}");
}

TEST(ExportSheet, takesOfWhatOtherVersionsKeptWhatItKnows)
{
    TestWindow t(1);
    for (const auto& [stored, expected] : {std::pair{R"("webp")", PictureFormat::webp},
             {"9", PictureFormat::jpeg}, {R"("heic")", PictureFormat::jpeg}}) {
        t.defaults.set("korvo_export",
            R"({"folder":"/out","size":"limited","pixels":800,"quality":70,"pattern":"{name}","format":)"
                + std::string(stored) + "}");
        const auto plan = ExportSheet(*t.window, only(1)).plan();
        EXPECT_EQ(plan.format, expected) << stored;
        EXPECT_EQ(plan.size, 800);
        EXPECT_EQ(plan.position, Position::keep) << "not in what was kept before there was the choice";
    }
}

} // namespace korvo
