#include "app/desktop/info/InfoPanel.h"
#include "app/desktop/info/WriteBackCommands.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"

namespace korvo {

void addInfo(MainWindow& window)
{
    auto* const panel = new InfoPanel(window);
    window.addInspectorTab(QObject::tr("Info"), panel);
    addWriteBackCommands(window);
    auto& form = panel->form();
    window.commands().setTyping({[&form] { return form.isTouched(); }, [&form] { return form.commit(); },
        [&form] { form.takeBack(); }});
}

} // namespace korvo
