#include "app/desktop/info/WriteBackCommands.h"

#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"

#include <QMessageBox>
#include <QPushButton>

namespace korvo {

namespace {

bool isConfirmed(QWidget& window, std::size_t photos)
{
    QMessageBox question(&window);
    question.setIcon(QMessageBox::Question);
    question.setText(qt(revertTitle));
    question.setInformativeText(qt(revertQuestion(photos)));
    question.addButton(QMessageBox::Cancel);
    question.setWindowModality(Qt::WindowModal);
    const QAbstractButton* const revert
        = question.addButton(QObject::tr("Revert"), QMessageBox::DestructiveRole);
    question.setDefaultButton(QMessageBox::Cancel);
    question.exec();
    return question.clickedButton() == revert;
}

void revert(MainWindow& window)
{
    auto& writeBack = window.desktop().session().writeBack();
    const auto photos = window.desktop().store().catalog().mastersOf(window.desktop().browser().targets());
    writeBack.requireRevertible(photos);
    if (isConfirmed(window, photos.size()))
        writeBack.revertMetadataToAsFound(photos);
}

void save(Desktop& desktop)
{
    auto& writeBack = desktop.session().writeBack();
    writeBack.saveMetadataToFiles();
    if (!writeBack.isSaving())
        desktop.say("All metadata is in the files already.");
}

} // namespace

void addWriteBackCommands(MainWindow& window)
{
    auto& writeBack = window.desktop().session().writeBack();
    window.commands().handle(
        Command::saveMetadata, [&window] { save(window.desktop()); },
        [&writeBack] { return !writeBack.isSaving(); }); // also for a text that is still being typed
    window.commands().handle(Command::revertMetadata, [&window] { revert(window); });
}

} // namespace korvo
