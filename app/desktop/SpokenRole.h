#pragma once

#include <QAccessible>

namespace korvo {

/// What a widget of ours is to those who hear the screen, which leaves out what is nothing in particular.
/// Call it where the widget is made, before it has a name.
void setSpokenRole(QWidget& widget, QAccessible::Role role);

} // namespace korvo
