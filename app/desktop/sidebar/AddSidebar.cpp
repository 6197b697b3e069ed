#include "app/desktop/MainWindow.h"
#include "app/desktop/Parts.h"

namespace korvo {

void addSidebar(MainWindow&) { }

} // namespace korvo
