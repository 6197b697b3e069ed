#pragma once

#include <QString>

class QMessageBox;
class QWidget;

namespace korvo {

/// Asks before what cannot be undone: a title, what follows from it, and a button that does it by its name.
/// The other one, which stands for no, is what Return and Esc press.
bool ask(QWidget& parent, const QString& title, const QString& details, const QString& verb,
    const QString& no = "Cancel");

/// Shows what went wrong until it is put away.
void warn(const QString& text, QWidget* parent = nullptr);

/// Makes a box show its texts letter by letter, since names in them may look like HTML. To be called when it
/// has them.
void showPlain(QMessageBox& box);

} // namespace korvo
