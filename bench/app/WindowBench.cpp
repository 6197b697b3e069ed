// bench_window [PHOTOS [PHOTO.jpg]]: the window over a library of so many photos (100,000), each a link to
// one picture, without a display: the time from the start to the first thumbnail and to a full first screen,
// once without and once with previews in the cache; what a step of scrolling takes; and the memory in use.

#include "app/Libraries.h"
#include "app/desktop/MainWindow.h"
#include "app/desktop/Theme.h"
#include "app/desktop/grid/GridView.h"
#include "bench/support/Compare.h"
#include "platform/FileDefaults.h"
#include "tests/support/TemporaryFolder.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>

#include <fmt/format.h>

#include <algorithm>

namespace korvo::bench {

namespace fs = std::filesystem;

namespace {

constexpr int steps = 600;

void makeLibrary(const fs::path& folder, const fs::path& links, const fs::path& picture, int photos)
{
    const SystemClock clock;
    Catalog catalog(folder, clock);
    const auto date = static_cast<double>(fs::last_write_time(picture).time_since_epoch().count());
    std::vector<NewPhoto> batch;
    for (int i = 0; i < photos; ++i) {
        const auto place = links / fmt::format("{:04}", i / 1000);
        if (i % 1000 == 0)
            fs::create_directories(place);
        const auto file = place / fmt::format("IMG_{:07}.jpg", i);
        fs::create_symlink(picture, file);
        batch.push_back(
            {.folderID = {}, .path = file, .addedAt = 1.7e9 + i, .fileDate = date, .fileSize = 1});
        if (batch.size() == 10'000 || i + 1 == photos) {
            catalog.addPhotos(batch);
            batch.clear();
        }
    }
    catalog.database().execute(
        "UPDATE photos SET gps_read = 1, exif_read = 1, capture_read = 1, rating = id % 6, label = id % 8");
}

struct Window {
    Window(const fs::path& library, const fs::path& config)
        : defaults(config), desktop(main, openLibrary(library, clock, defaults), clock, defaults),
          window(desktop)
    {
        window.resize(1600, 1000);
        window.show();
        QApplication::processEvents();
    }

    void settle()
    {
        while (desktop.isBusy())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        QApplication::processEvents();
    }

    const SystemClock clock;
    FileDefaults defaults;
    QtMainThread main;
    Desktop desktop;
    MainWindow window;
};

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void reportStart(const char* how, const fs::path& library, const fs::path& config)
{
    QElapsedTimer timer;
    timer.start();
    Window window(library, config);
    const double shown = milliseconds(timer);
    const auto before = window.desktop.pictures().waiting();
    while (window.desktop.pictures().waiting() >= before && before > 0)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    const double first = milliseconds(timer);
    window.settle();
    fmt::print(
        "start {}: window {:.0f} ms, first thumbnail {:.0f} ms, first and next screens full {:.0f} ms\n", how,
        shown, first, milliseconds(timer));
}

/// Scrolls by a step at a time, as the wheel does, and lets everything happen that is due before the next.
void reportScrolling(Window& window, const char* how, int pixels)
{
    auto* const bar = gridOf(window.window)->verticalScrollBar();
    bar->setValue(0);
    window.settle();
    std::vector<double> frames;
    for (int i = 0; i < steps; ++i) {
        QElapsedTimer timer;
        timer.start();
        bar->setValue((bar->value() + pixels) % std::max(1, bar->maximum()));
        QApplication::processEvents();
        const double taken = milliseconds(timer);
        frames.push_back(taken);
        if (taken < 16)
            QThread::usleep(static_cast<unsigned long>((16 - taken) * 1000));
    }
    std::sort(frames.begin(), frames.end());
    fmt::print("scrolling {}: median {:.1f} ms, 95th percentile {:.1f} ms, longest {:.1f} ms\n", how,
        frames[steps / 2], frames[steps * 95 / 100], frames.back());
}

} // namespace

} // namespace korvo::bench

int main(int argc, char** argv)
{
    using namespace korvo::bench;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    korvo::applyTheme(application);
    const int photos = argc > 1 ? std::atoi(argv[1]) : 100'000;
    const korvo::TemporaryFolder folder;
    const fs::path picture = argc > 2 ? fs::path(argv[2]) : fs::path(KORVO_TEST_DATA) / "metadata/camera.jpg";
    makeLibrary(folder / "Library", folder / "photos", fs::absolute(picture), photos);
    fmt::print("{} photos\n", photos);
    reportStart("without previews", folder / "Library", folder / "config");
    reportStart("with previews", folder / "Library", folder / "config");
    Window window(folder / "Library", folder / "config");
    reportScrolling(window, "by the wheel", 120);
    reportScrolling(window, "by pages", 3000);
    fmt::print("most memory in use: {:.0f} MB\n", peakMemory() / 1e6);
}
