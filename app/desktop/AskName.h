#pragma once

#include <QString>

#include <optional>
#include <string>

class QWidget;

namespace korvo {

/// Asks for a name in a small window of that title, which offers the one there is; nothing when the user
/// gives none.
std::optional<std::string> askName(QWidget& parent, const QString& title, const QString& name = {});

} // namespace korvo
