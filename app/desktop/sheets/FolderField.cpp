#include "app/desktop/sheets/FolderField.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QToolButton>

namespace korvo {

FolderField::FolderField(const QString& title, const QString& folder) : edit_(new QLineEdit(folder))
{
    edit_->setAccessibleName(title);
    auto* const button = new QToolButton;
    button->setText(QStringLiteral("…"));
    button->setToolTip(tr("Choose a folder"));
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(edit_, 1);
    layout->addWidget(button);
    setFocusProxy(edit_);
    connect(button, &QToolButton::clicked, this, [this, title] {
        const auto chosen = QFileDialog::getExistingDirectory(this, title, edit_->text());
        if (!chosen.isEmpty())
            edit_->setText(chosen);
    });
}

} // namespace korvo
