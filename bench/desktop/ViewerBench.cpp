// How long the window takes from a slider's move to its pixels, and from the key for the next photo to that
// photo: bench_viewer [FILE...], JPEGs of 24 megapixels or twelve that are made. It is the whole window, its
// view has 2 megapixels, and a state counts as shown when the photo was painted in it at full sharpness and
// the window had its pixels. No display.
#include "app/AddFiles.h"
#include "app/desktop/Theme.h"
#include "app/desktop/viewer/PhotoView.h"
#include "app/desktop/window/MainWindow.h"
#include "bench/desktop/WatchedApplication.h"
#include "bench/support/MadePhoto.h"
#include "catalog/store/LibraryActions.h"
#include "platform/FileDefaults.h"
#include "platform/HeapArenas.h"
#include "tests/support/SixSteps.h"
#include "tests/support/TemporaryFolder.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QSlider>
#include <QStyle>
#include <QTabWidget>

#include <fmt/format.h>

#include <algorithm>

namespace korvo::bench {

namespace {

namespace fs = std::filesystem;
using Clock = WatchedApplication::Clock;

constexpr int photoCount = 12, width = 6000, height = 4000;
constexpr QSize viewSize(1732, 1155); // 2 megapixels of 3 by 2
constexpr int moves = 60;

void print(const std::string& what, std::vector<double> milliseconds)
{
    std::ranges::sort(milliseconds);
    const auto at = [&](double part) {
        return milliseconds[static_cast<std::size_t>(part * static_cast<double>(milliseconds.size() - 1))];
    };
    fmt::print(
        "{:<44} median {:6.1f} ms   95 % {:6.1f} ms   worst {:6.1f} ms\n", what, at(0.5), at(0.95), at(1));
}

/// The one that can be seen.
template <typename Widget, typename Test>
Widget& partOf(const MainWindow& window, Test test)
{
    for (auto* const widget : window.findChildren<QWidget*>())
        if (auto* const part = dynamic_cast<Widget*>(widget); part && part->isVisible() && test(*part))
            return *part;
    throw std::logic_error("the window lacks a part that is measured");
}

class Bench {
public:
    Bench(WatchedApplication& application, const std::vector<fs::path>& files)
        : application_(application), desktop_(main_, catalogOf(files), clock_, defaults_), window_(desktop_)
    {
        window_.show();
        settle();
        desktop_.browser().setMode(ViewMode::viewer);
        showTab("Adjust");
        view_ = &partOf<PhotoView>(window_, [](const auto&) { return true; });
        for (int round = 0; round < 3; ++round) { // the sides take their part of it
            settle();
            window_.resize(window_.size() + viewSize - view_->size());
        }
        settle();
        if (view_->size() != viewSize)
            throw std::logic_error("the window does not give its view the size that is measured");
        fmt::print("window of {} x {}, its view of {} x {}\n", window_.width(), window_.height(),
            view_->width(), view_->height());
    }

    void sliders()
    {
        for (const auto& [what, base] : {std::pair("A slider of an unedited photo", PhotoEdits()),
                 std::pair("A slider of a photo with all adjustments", sixSteps)}) {
            desktop_.store().perform("Adjust", [&](Catalog& catalog) {
                catalog.saveEdits(std::vector{*desktop_.browser().current()}, base);
            });
            print(what, drag(partOf<QSlider>(window_, [](const auto& slider) {
                return slider.accessibleName() == "Exposure";
            })));
        }
    }

    void steps()
    {
        for (const char* const tab : {"Adjust", "Info"}) {
            showTab(tab);
            std::vector<double> times;
            const auto walk = [&](Qt::Key key) {
                for (int step = 1; step < count(); ++step) {
                    settle(); // the neighbours are there
                    times.push_back(untilShown([&] { press(key); }));
                }
            };
            walk(Qt::Key_Right);
            walk(Qt::Key_Left);
            print(fmt::format("The next photo, prefetched, {} tab", tab), times);
        }
        press(Qt::Key_End);
        settle();
        const auto begun = Clock::now();
        for (int step = 1; step < count(); ++step)
            untilShown([&] { press(Qt::Key_Left); });
        fmt::print("{:<44} {:.1f} photos a second\n", "Back through all without a pause",
            (count() - 1) * 1e3 / millisecondsSince(begun));
    }

private:
    int count() { return static_cast<int>(desktop_.store().list().shown().size()); }

    std::unique_ptr<Catalog> catalogOf(const std::vector<fs::path>& files)
    {
        auto catalog = std::make_unique<Catalog>(folder_ / "Library", clock_);
        addFiles(*catalog, files, clock_, ReadCameraData::now, {}, [](std::size_t) {});
        return catalog;
    }

    void showTab(const QString& title)
    {
        auto* const tabs = window_.findChild<QTabWidget*>();
        for (int place = 0; place < tabs->count(); ++place)
            if (tabs->tabText(place) == title)
                return tabs->setCurrentIndex(place);
        throw std::logic_error("no such tab");
    }

    /// Until nothing is under way any more, and that is so for a while.
    void settle()
    {
        for (auto quiet = Clock::now(); millisecondsSince(quiet) < 200;) {
            QApplication::processEvents(QEventLoop::AllEvents, 5);
            if (desktop_.isBusy())
                quiet = Clock::now();
        }
    }

    bool isSharp()
    {
        const auto& feed = view_->feed();
        const QSize size = feed.screen().image.size();
        return feed.photo() == desktop_.browser().current() && !feed.isLoading()
            && std::max(size.width(), size.height()) >= std::max(view_->width(), view_->height());
    }

    /// Milliseconds from an event to the end of the painting of another picture, which is sharp.
    double untilShown(const std::function<void()>& event)
    {
        const auto before = view_->feed().screen().image.cacheKey();
        application_.await([this, before](const QObject& painted) {
            return &painted == view_ && isSharp() && view_->feed().screen().image.cacheKey() != before;
        });
        const auto begun = Clock::now();
        event();
        while (!application_.shown())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return std::chrono::duration<double, std::milli>(*application_.shown() - begun).count();
    }

    void press(Qt::Key key)
    {
        QWidget* const focus = window_.centre()->focusWidget() ? window_.centre()->focusWidget() : view_;
        for (const auto type : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QApplication::sendEvent(focus, &event);
        }
    }

    static void mouse(QSlider& slider, QEvent::Type type, int x)
    {
        const QPointF at(x, slider.height() / 2.0);
        const bool isMove = type == QEvent::MouseMove;
        QMouseEvent event(type, at, slider.mapToGlobal(at), isMove ? Qt::NoButton : Qt::LeftButton,
            type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&slider, &event);
    }

    /// Takes the handle with the mouse and moves it point by point, to and fro.
    std::vector<double> drag(QSlider& slider)
    {
        settle();
        const int handle = slider.style()->pixelMetric(QStyle::PM_SliderLength, nullptr, &slider);
        const int from = handle / 2
            + QStyle::sliderPositionFromValue(
                slider.minimum(), slider.maximum(), slider.value(), slider.width() - handle);
        mouse(slider, QEvent::MouseButtonPress, from);
        if (!slider.isSliderDown())
            throw std::logic_error("the slider's handle is not where it was taken");
        std::vector<double> times;
        for (int move = 1; move <= moves; ++move) {
            const int way = move <= moves / 2 ? move : moves - move;
            times.push_back(untilShown([&] { mouse(slider, QEvent::MouseMove, from + way); }));
            settle();
        }
        mouse(slider, QEvent::MouseButtonRelease, from);
        settle();
        return times;
    }

    WatchedApplication& application_;
    TemporaryFolder folder_;
    SystemClock clock_;
    FileDefaults defaults_{folder_ / "defaults"};
    QtMainThread main_;
    Desktop desktop_;
    MainWindow window_;
    PhotoView* view_ = nullptr;
};

} // namespace

} // namespace korvo::bench

int main(int count, char** arguments)
{
    using namespace korvo;
    keepFewHeapArenas(); // as the program
    qputenv("QT_QPA_PLATFORM", "offscreen");
    bench::WatchedApplication application(count, arguments);
    applyTheme(application);
    const TemporaryFolder folder;
    std::vector<std::filesystem::path> files(arguments + 1, arguments + count);
    for (int number = 1; count == 1 && number <= bench::photoCount; ++number)
        files.push_back(
            bench::madePhoto(folder / fmt::format("{:02}.jpg", number), bench::width, bench::height, number));
    bench::Bench bench(application, files);
    bench.sliders();
    bench.steps();
}
