#include "app/desktop/FirstStart.h"

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

bool isLibrary(const std::filesystem::path& folder)
{
    std::error_code unreadable; // which the user is told
    return !folder.empty() && std::filesystem::exists(folder / "catalog.sqlite", unreadable);
}

} // namespace

std::optional<FirstStart> askAtFirstStart()
{
    const auto library = picturesFolder() / "Korvo Library";
    QMessageBox box(QMessageBox::NoIcon, "Korvo", "Where are your photos?");
    box.setInformativeText(
        "Choose a folder. Its photos stay where they are; what you do with them is kept in the library "
        + qt(library.string()) + ".");
    const QAbstractButton* const photos = box.addButton("Choose Folder of Photos…", QMessageBox::AcceptRole);
    const QAbstractButton* const other = box.addButton("Open a Library…", QMessageBox::ActionRole);
    box.addButton("Quit", QMessageBox::RejectRole);
    while (true) {
        box.exec();
        if (box.clickedButton() == photos) {
            if (const auto folder = askFolder("Folder of Photos"); !folder.empty())
                return FirstStart{library, {folder}};
        } else if (box.clickedButton() == other) {
            if (const auto folder = askFolder("Open Library"); isLibrary(folder))
                return FirstStart{folder, {}};
            else if (!folder.empty())
                QMessageBox::warning(nullptr, "Korvo",
                    "There is no library in " + qt(folder.string())
                        + ", or it cannot be read. Choose the folder that holds its catalog.sqlite.");
        } else {
            return std::nullopt;
        }
    }
}

} // namespace korvo
