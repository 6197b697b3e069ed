#include "app/desktop/MainWindow.h"
#include "app/desktop/Parts.h"

namespace korvo {

void addInfo(MainWindow&) { }

} // namespace korvo
