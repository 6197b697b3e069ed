#include "app/desktop/MainWindow.h"
#include "app/desktop/Parts.h"

namespace korvo {

void addSheets(MainWindow&) { }

} // namespace korvo
