#pragma once

#include "app/view/Marking.h"

#include <QPoint>

namespace korvo {

class MainWindow;

/// Does what a click on a mark of one of these photos means for all of them. For a label, all are offered at
/// a place of the screen.
void clickOnMark(MainWindow& window, const std::vector<PhotoID>& ids, const MarkPart& part, QPoint at);

} // namespace korvo
