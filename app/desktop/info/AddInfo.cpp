#include "app/desktop/MainWindow.h"
#include "app/desktop/Parts.h"
#include "app/desktop/info/InfoPanel.h"
#include "app/desktop/info/WriteBackCommands.h"

namespace korvo {

void addInfo(MainWindow& window)
{
    window.addInspectorTab(QObject::tr("Info"), new InfoPanel(window));
    addWriteBackCommands(window);
}

} // namespace korvo
