#pragma once

#include <string>
#include <vector>

class QDialog;
class QWidget;

namespace korvo {

/// Shows what went wrong, a line each, to be read and copied. The dialog deletes itself when it is closed.
QDialog* showFailures(QWidget& parent, const std::vector<std::string>& failures);

} // namespace korvo
