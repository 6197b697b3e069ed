#include "app/desktop/start/Screenshot.h"

#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/window/MainWindow.h"

#include <QApplication>
#include <QPainter>

#include <cstdio>
#include <stdexcept>

namespace korvo {

namespace {

constexpr std::chrono::milliseconds look{100};
constexpr int quietLooks = 4; // in a row, until the picture is taken
constexpr int mostLooks = 600; // a minute

struct View {
    const char* name;
    Command command;
};
/// All that --view knows; the manual names them too.
constexpr View views[] = {{"grid", Command::grid}, {"viewer", Command::viewer}, {"compare", Command::compare},
    {"survey", Command::survey}, {"import", Command::importPhotos}, {"smart-album", Command::newSmartAlbum},
    {"auto-stack", Command::autoStack}, {"naming", Command::namingPresets}, {"settings", Command::settings},
    {"keys", Command::keys}, {"about", Command::about}};

} // namespace

std::string screenshotViews()
{
    std::string names;
    for (const auto& view : views)
        names += (names.empty() ? "" : &view == std::end(views) - 1 ? " or " : ", ") + std::string(view.name);
    return names;
}

namespace {

Command commandOf(const QString& view)
{
    for (const auto& [name, command] : views)
        if (view == name)
            return command;
    throw std::invalid_argument("no view \"" + view.toStdString() + "\": use " + screenshotViews());
}

/// The window with the sheets that are open above it.
QImage pictureOf(MainWindow& window)
{
    QPixmap picture = window.grab();
    QPainter painter(&picture);
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (widget == &window || !widget->isVisible() || !widget->isWindow()
            || widget->windowType() == Qt::ToolTip)
            continue;
        QPoint at = widget->mapToGlobal(QPoint(0, 0)) - window.mapToGlobal(QPoint(0, 0));
        if (widget->parentWidget()) // no window manager has put it in the middle
            at = QPoint((window.width() - widget->width()) / 2, (window.height() - widget->height()) / 2);
        painter.fillRect(picture.rect(), QColor(0, 0, 0, 90));
        painter.drawPixmap(at, widget->grab());
        painter.setPen(theme::edge); // as a window manager's frame
        painter.drawRect(QRect(at, widget->size()));
    }
    return picture.toImage();
}

void failPicture(const std::string& why)
{
    std::fprintf(stderr, "korvo-desktop: %s\n", why.c_str());
    QApplication::exit(1);
}

void whenRead(MainWindow& window, int looks, const std::function<void()>& then)
{
    if (!window.desktop().store().isReading())
        then();
    else if (looks == 0)
        failPicture("the library's photos were not read within a minute, so that there is no picture");
    else
        QTimer::singleShot(look, &window, [&window, looks, then] { whenRead(window, looks - 1, then); });
}

void show(MainWindow& window, Command command, const QString& file)
{
    if (!window.desktop().browser().current())
        window.desktop().browser().step(0);
    auto* const timer = new QTimer(&window);
    QObject::connect(
        timer, &QTimer::timeout, &window, [&window, timer, file, quiet = 0, looks = 0]() mutable {
            quiet = window.desktop().isBusy() ? 0 : quiet + 1;
            if (quiet < quietLooks && ++looks < mostLooks)
                return;
            timer->stop();
            if (pictureOf(window).save(file, "PNG"))
                QApplication::exit();
            else
                failPicture("the picture could not be written to " + utf8(file));
        });
    timer->start(look);
    window.commands().run(command); // last: a sheet may not return before it is closed
}

} // namespace

void takeScreenshot(MainWindow& window, const ScreenshotRequest& request)
{
    const auto command = commandOf(request.view);
    whenRead(window, mostLooks, [&window, command, file = request.file] { show(window, command, file); });
}

} // namespace korvo
