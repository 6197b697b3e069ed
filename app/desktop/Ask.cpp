#include "app/desktop/Ask.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace korvo {

void showPlain(QMessageBox& box)
{
    for (auto* const label : box.findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
}

void warn(const QString& text, QWidget* parent)
{
    QMessageBox box(
        QMessageBox::Warning, parent ? parent->windowTitle() : "Korvo", text, QMessageBox::Ok, parent);
    showPlain(box);
    box.exec();
}

bool ask(
    QWidget& parent, const QString& title, const QString& details, const QString& verb, const QString& no)
{
    QMessageBox box(QMessageBox::Question, "Korvo", title, QMessageBox::NoButton, &parent);
    box.setInformativeText(details);
    showPlain(box);
    const auto* const yes = box.addButton(verb, QMessageBox::DestructiveRole);
    box.setDefaultButton(box.addButton(no, QMessageBox::RejectRole));
    box.exec();
    return box.clickedButton() == yes;
}

} // namespace korvo
