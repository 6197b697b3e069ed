#pragma once

#include <QSize>
#include <QString>

#include <string>

namespace korvo {

class MainWindow;

/// What --screenshot asks for.
struct ScreenshotRequest {
    QString file;
    QString view = "grid";
    QSize size{1280, 800};
};

/// What `view` may be, as a list for the user: "grid, viewer … or about".
std::string screenshotViews();

/// Brings the window, which is shown, into the state that is asked for, waits until its pictures are there,
/// writes the picture and ends the program: with 0, or 1 when that failed. An unknown view is refused at once
/// by a std::invalid_argument.
void takeScreenshot(MainWindow& window, const ScreenshotRequest& request);

} // namespace korvo
