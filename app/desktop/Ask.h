#pragma once

#include <QString>

class QWidget;

namespace korvo {

/// Asks before what cannot be undone: a title, what follows from it, and a button that does it by its name.
/// The other one, which stands for no, is what Return and Esc press.
bool ask(QWidget& parent, const QString& title, const QString& details, const QString& verb,
    const QString& no = "Cancel");

} // namespace korvo
