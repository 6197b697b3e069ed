#pragma once

#include "app/desktop/Jobs.h"

#include <QString>

class QWidget;

namespace korvo {

/// What becomes of a running job that is stopped now: "What is done stays, about 900 of 1,000."
QString whatStoppingLeaves(const Job& job);

// Questions before quitting. Each says whether to quit all the same.
bool isLossWished(QWidget& window);
/// Of a change of files that is going on, by its title.
bool isCutWished(QWidget& window, const std::string& title);
/// At least one.
bool isEndWished(QWidget& window, const std::vector<std::shared_ptr<Job>>& jobs);

} // namespace korvo
