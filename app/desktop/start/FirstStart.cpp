#include "app/desktop/start/FirstStart.h"

#include "app/Libraries.h"
#include "app/desktop/Ask.h"
#include "app/desktop/Texts.h"
#include "platform/AppFolders.h"

#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace korvo {

namespace {

std::filesystem::path askFolder(const QString& title)
{
    return pathOf(
        QFileDialog::getExistingDirectory(nullptr, title, QFile::decodeName(picturesFolder().c_str())));
}

} // namespace

std::optional<FirstStart> askAtFirstStart()
{
    const auto library = usualLibrary();
    QMessageBox box(QMessageBox::NoIcon, "Korvo", "Where are your photos?");
    box.setInformativeText(
        "Choose a folder. Its photos stay where they are; what you do with them is kept in the library "
        + qt(library.string()) + ".");
    showPlain(box);
    const QAbstractButton* const photos = box.addButton("Choose Folder of Photos…", QMessageBox::AcceptRole);
    const QAbstractButton* const other = box.addButton("Open a Library…", QMessageBox::ActionRole);
    box.addButton("Quit", QMessageBox::RejectRole);
    while (true) {
        box.exec();
        if (box.clickedButton() == photos) {
            if (const auto folder = askFolder("Folder of Photos"); !folder.empty())
                return FirstStart{library, {folder}};
        } else if (box.clickedButton() == other) {
            if (const auto folder = askFolder("Open Library"); holdsCatalog(folder))
                return FirstStart{folder, {}};
            else if (!folder.empty())
                warn("There is no library in " + qt(folder.string())
                    + ", or it cannot be read. Choose the folder that holds its catalog.sqlite.");
        } else {
            return std::nullopt;
        }
    }
}

std::optional<FirstStart> askForMissing(const std::filesystem::path& library)
{
    const auto texts = awayTexts(library);
    QMessageBox box(QMessageBox::NoIcon, "Korvo", qt(texts.title));
    box.setInformativeText(qt(texts.details));
    showPlain(box);
    const QAbstractButton* const again = box.addButton("Try Again", QMessageBox::AcceptRole);
    const QAbstractButton* const other = box.addButton("Another Library…", QMessageBox::ActionRole);
    box.addButton("Quit", QMessageBox::RejectRole);
    while (true) {
        box.exec();
        if (box.clickedButton() == other)
            return askAtFirstStart();
        if (box.clickedButton() != again)
            return std::nullopt;
        if (holdsCatalog(library))
            return FirstStart{library, {}};
    }
}

} // namespace korvo
