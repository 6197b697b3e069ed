#include "app/desktop/Ask.h"

#include <QMessageBox>
#include <QPushButton>

namespace korvo {

bool ask(
    QWidget& parent, const QString& title, const QString& details, const QString& verb, const QString& no)
{
    QMessageBox box(QMessageBox::Question, "Korvo", title, QMessageBox::NoButton, &parent);
    box.setTextFormat(Qt::PlainText); // names may look like marks of another format
    box.setInformativeText(details);
    const auto* const yes = box.addButton(verb, QMessageBox::DestructiveRole);
    box.setDefaultButton(box.addButton(no, QMessageBox::RejectRole));
    box.exec();
    return box.clickedButton() == yes;
}

} // namespace korvo
