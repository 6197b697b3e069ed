#include "app/desktop/SpokenRole.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace korvo {

namespace {

constexpr auto roleProperty = "korvoSpokenRole";

QAccessibleInterface* withRole(const QString&, QObject* object)
{
    auto* const widget = qobject_cast<QWidget*>(object);
    const auto role = widget ? widget->property(roleProperty) : QVariant();
    return role.isValid() ? new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()))
                          : nullptr;
}

} // namespace

void setSpokenRole(QWidget& widget, QAccessible::Role role)
{
    QAccessible::installFactory(withRole); // which is there once, however often this is called
    widget.setProperty(roleProperty, static_cast<int>(role));
}

} // namespace korvo
