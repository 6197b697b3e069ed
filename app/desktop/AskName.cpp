#include "app/desktop/AskName.h"

#include "app/desktop/Texts.h"

#include <QInputDialog>

namespace korvo {

std::optional<std::string> askName(QWidget& parent, const QString& title, const QString& name)
{
    QInputDialog dialog(&parent);
    dialog.setWindowTitle(title);
    dialog.setLabelText("Name");
    dialog.setTextValue(name);
    dialog.resize(380, dialog.sizeHint().height());
    const bool accepted = dialog.exec() == QDialog::Accepted;
    const QString given = dialog.textValue().trimmed();
    return accepted && !given.isEmpty() ? std::optional(utf8(given)) : std::nullopt;
}

} // namespace korvo
