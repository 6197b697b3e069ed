// How long the window takes from a slider's move to its pixels, and from the key for the next photo to that
// photo, both painted: bench_viewer [FILE...], JPEGs of 24 megapixels or twelve that are made. The view has
// 2 megapixels and no display.
#include "app/AddFiles.h"
#include "app/desktop/viewer/PhotoView.h"
#include "app/desktop/window/MainWindow.h"
#include "bench/support/MadePhoto.h"
#include "catalog/store/LibraryActions.h"
#include "platform/FileDefaults.h"
#include "tests/support/SixSteps.h"
#include "tests/support/TemporaryFolder.h"

#include <QApplication>
#include <QElapsedTimer>

#include <fmt/format.h>

#include <algorithm>

namespace korvo::bench {

namespace {

namespace fs = std::filesystem;

constexpr int photoCount = 12, width = 6000, height = 4000;
constexpr QSize viewSize(1732, 1155); // 2 megapixels of 3 by 2

void wait(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
}

void print(const char* what, std::vector<double> milliseconds)
{
    std::ranges::sort(milliseconds);
    const auto at = [&](double part) {
        return milliseconds[static_cast<std::size_t>(part * static_cast<double>(milliseconds.size() - 1))];
    };
    fmt::print(
        "{:<44} median {:6.1f} ms   95 % {:6.1f} ms   worst {:6.1f} ms\n", what, at(0.5), at(0.95), at(1));
}

class Bench {
public:
    explicit Bench(const std::vector<fs::path>& files)
        : desktop_(main_, catalogOf(files), clock_, defaults_),
          view_(desktop_, 0, PhotoFeed::Neighbours::ahead)
    {
        view_.resize(viewSize);
        view_.show();
        drawn_ = view_.drawn.connect([this](const HistogramData&) {
            view_.repaint(); // the pixels are in the window's memory when it returns
            ++frames_;
        });
        browser_
            = desktop_.browser().changed.connect([this] { view_.setPhoto(desktop_.browser().current()); });
        desktop_.browser().setMode(ViewMode::viewer);
        view_.setPhoto(desktop_.browser().current());
        wait(3000);
    }

    void sliders()
    {
        for (const auto& [what, base] : {std::pair("A slider of an unedited photo", PhotoEdits()),
                 std::pair("A slider of a photo with all adjustments", sixSteps)}) {
            setEdits(desktop_.store(), std::vector{*desktop_.browser().current()}, base);
            wait(500);
            std::vector<double> times;
            for (int move = 1; move <= 60; ++move)
                times.push_back(untilDrawn([&] {
                    desktop_.draft().show(
                        "Exposure", [move](PhotoEdits& edits) { edits.exposure = 0.02 * move; });
                }));
            desktop_.draft().drop();
            print(what, times);
        }
    }

    void steps()
    {
        std::vector<double> times;
        for (int step = 1; step < count(); ++step) {
            wait(1500); // the neighbours are there
            times.push_back(untilDrawn([&] { desktop_.browser().step(1); }));
        }
        print("The next photo, its neighbours prefetched", times);
        wait(1500);
        QElapsedTimer timer;
        timer.start();
        for (int step = 1; step < count(); ++step)
            untilDrawn([&] { desktop_.browser().step(-1); });
        fmt::print("{:<44} {:.1f} photos a second\n", "Back through all without a pause",
            (count() - 1) * 1e3 / static_cast<double>(timer.elapsed()));
    }

private:
    int count() { return static_cast<int>(desktop_.store().list().shown().size()); }

    std::unique_ptr<Catalog> catalogOf(const std::vector<fs::path>& files)
    {
        auto catalog = std::make_unique<Catalog>(folder_ / "Library", clock_);
        addFiles(*catalog, files, clock_, ReadCameraData::now, {}, [](std::size_t) {});
        return catalog;
    }

    double untilDrawn(const std::function<void()>& action)
    {
        const int before = frames_;
        QElapsedTimer timer;
        timer.start();
        action();
        while (frames_ == before)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }

    TemporaryFolder folder_;
    SystemClock clock_;
    FileDefaults defaults_{folder_ / "defaults"};
    QtMainThread main_;
    Desktop desktop_;
    PhotoView view_;
    int frames_ = 0;
    Connection drawn_, browser_;
};

} // namespace

} // namespace korvo::bench

int main(int count, char** arguments)
{
    using namespace korvo;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    const TemporaryFolder folder;
    std::vector<std::filesystem::path> files(arguments + 1, arguments + count);
    for (int number = 1; count == 1 && number <= bench::photoCount; ++number)
        files.push_back(
            bench::madePhoto(folder / fmt::format("{:02}.jpg", number), bench::width, bench::height, number));
    bench::Bench bench(files);
    bench.sliders();
    bench.steps();
}
