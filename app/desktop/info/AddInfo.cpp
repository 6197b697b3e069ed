#include "app/desktop/MainWindow.h"
#include "app/desktop/Parts.h"
#include "app/desktop/info/FieldEdit.h"
#include "app/desktop/info/InfoPanel.h"
#include "app/desktop/info/WriteBackCommands.h"

#include <QApplication>

namespace korvo {

namespace {

/// The field that has the focus if something was typed into it, else null.
FieldEdit* typedField()
{
    auto* const field = dynamic_cast<FieldEdit*>(QApplication::focusWidget());
    return field && field->isTouched() ? field : nullptr;
}

bool keepTyped()
{
    if (auto* const field = typedField())
        field->commit();
    return typedField() == nullptr;
}

void takeTypedBack()
{
    if (auto* const field = typedField())
        field->takeBack();
}

} // namespace

void addInfo(MainWindow& window)
{
    window.addInspectorTab(QObject::tr("Info"), new InfoPanel(window));
    addWriteBackCommands(window);
    window.commands().setTyping({[] { return typedField() != nullptr; }, keepTyped, takeTypedBack});
}

} // namespace korvo
