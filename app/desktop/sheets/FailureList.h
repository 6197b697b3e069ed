#pragma once

#include <string>
#include <vector>

class QWidget;

namespace korvo {

/// Shows what went wrong, a line each, to be read and copied.
void showFailures(QWidget& parent, const std::vector<std::string>& failures);

} // namespace korvo
