#include "app/desktop/MainWindow.h"
#include "app/desktop/Parts.h"

namespace korvo {

void addViewer(MainWindow&) { }

} // namespace korvo
