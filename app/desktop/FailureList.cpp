#include "app/desktop/FailureList.h"

#include "app/desktop/Texts.h"
#include "base/Text.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace korvo {

QDialog* showFailures(QWidget& parent, const std::vector<std::string>& failures)
{
    auto* const dialog = new QDialog(&parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(qt(counted(failures.size(), "Failure")));
    auto* const text = new QPlainTextEdit;
    text->setReadOnly(true);
    for (const auto& failure : failures)
        text->appendPlainText(qt(failure));
    text->moveCursor(QTextCursor::Start);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    auto* const layout = new QVBoxLayout(dialog);
    layout->addWidget(text);
    layout->addWidget(buttons);
    dialog->resize(640, 320);
    dialog->show();
    return dialog;
}

} // namespace korvo
