// bench_window [PHOTOS...] [PICTURE.jpg...]: the window over libraries of so many photos (1,000, 100,000 and
// 1,000,000), without a display. Behind the photos are links to the pictures, or to eight of 24 megapixels
// that are made. Each start is a process of its own, and its time counts from before that process. Each kind
// of start is made three times.

#include "app/Libraries.h"
#include "app/desktop/Theme.h"
#include "app/desktop/grid/GridView.h"
#include "app/desktop/window/MainWindow.h"
#include "app/view/SearchFilter.h"
#include "bench/desktop/WatchedApplication.h"
#include "bench/desktop/WindowLibrary.h"
#include "bench/support/Compare.h"
#include "bench/support/MadePhoto.h"
#include "catalog/store/LibraryActions.h"
#include "platform/FileDefaults.h"
#include "platform/HeapArenas.h"
#include "tests/support/TemporaryFolder.h"

#include <QProcess>
#include <QScrollBar>
#include <QThread>

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <random>

namespace korvo::bench {

namespace fs = std::filesystem;
using Clock = WatchedApplication::Clock;

namespace {

constexpr int madePictures = 8, madeWidth = 6000, madeHeight = 4000;
constexpr QSize windowSize(1600, 1000);
constexpr int starts = 3; // of each kind
constexpr int steps = 300; // of scrolling
constexpr double frame = 16; // milliseconds
constexpr double sleep = 0.5; // milliseconds between two looks for events
constexpr double mostPatience = 10'000; // milliseconds until cells count as never filled

/// The program's own start, as main.cpp has it.
struct Window {
    Window(WatchedApplication& watched, const fs::path& library)
        : application(watched), defaults(library.parent_path() / "config"),
          desktop(main, openLibrary(library, clock, defaults), clock, defaults), window(desktop)
    {
        window.memory().restore();
        window.setWindowState(Qt::WindowNoState); // it fills the small screen that there is without a display
        window.resize(windowSize);
        window.show();
    }

    void handleEvents() { QApplication::processEvents(QEventLoop::WaitForMoreEvents); }

    void settle()
    {
        QApplication::processEvents();
        while (desktop.isBusy())
            handleEvents();
        QApplication::processEvents();
    }

    LibraryStore& store() { return desktop.store(); }
    QScrollBar& bar() { return *window.grid().verticalScrollBar(); }

    WatchedApplication& application;
    const SystemClock clock;
    FileDefaults defaults;
    QtMainThread main;
    Desktop desktop;
    MainWindow window;
};

void reportStart(Window& window, Clock::time_point begun)
{
    while (window.application.paints() == 0)
        window.handleEvents();
    if (window.window.size() != windowSize)
        throw std::logic_error("the window has not the size that is measured");
    const double shown = millisecondsSince(begun);
    const auto waiting = [&] { return window.desktop.pictures().waiting(); };
    std::size_t most = 0;
    const auto waitUntil = [&](auto isReached) {
        while (!isReached()) {
            window.handleEvents();
            most = std::max(most, waiting());
        }
        window.window.grid().viewport()->repaint();
        return millisecondsSince(begun);
    };
    const double listed = waitUntil([&] { return waiting() > 0; });
    const double first = waitUntil([&] { return waiting() < most; });
    const double full = waitUntil([&] { return waiting() <= most - most / 3; }); // two screens are prefetched
    const auto blocked = window.application.takeLongest();
    fmt::print("  window {:.0f} ms, photos {:.0f} ms, first thumbnail {:.0f} ms, screen full {:.0f} ms; "
               "longest event {:.0f} ms ({}); memory {:.0f} MB\n",
        shown, listed, first, full, blocked.milliseconds, blocked.by, peakMemory() / 1e6);
}

/// Where to scroll next from where the bar stands, within its range.
using Scrolling = std::function<int(int value, int range)>;

Scrolling by(int pixels)
{
    return [pixels](int value, int range) { return ((value + pixels) % range + range) % range; };
}

Scrolling anywhere()
{
    return [random = std::mt19937(1)](
               int, int range) mutable { return static_cast<int>(random() % static_cast<unsigned>(range)); };
}

/// How many cells were still empty when frames ended, and how long the last ones were.
std::string reportEmptyCells(Window& window, const std::vector<std::size_t>& empty)
{
    const auto begun = Clock::now();
    while (window.window.grid().emptyCells() > 0 && millisecondsSince(begun) < mostPatience)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    const auto left = window.window.grid().emptyCells();
    return fmt::format("{:.0f} % of frames with empty cells, {} at most; {}",
        100.0 * static_cast<double>(std::ranges::count_if(empty, [](auto cells) { return cells > 0; }))
            / steps,
        std::ranges::max(empty),
        left > 0 ? fmt::format("{} NEVER FILLED", left)
                 : fmt::format("filled {:.0f} ms after the end", millisecondsSince(begun)));
}

/// Scrolls by a step at a time, and handles what comes until the next frame is due: the frame's time is that
/// of its first events, or all of it if what came later kept the next one waiting.
void reportScrolling(Window& window, const char* how, Scrolling next)
{
    window.bar().setValue(0);
    window.settle();
    window.application.takeLongest();
    std::vector<double> frames;
    std::vector<std::size_t> empty;
    for (int i = 0; i < steps; ++i) {
        const auto begun = Clock::now();
        window.bar().setValue(next(window.bar().value(), std::max(1, window.bar().maximum())));
        QApplication::processEvents();
        const double first = millisecondsSince(begun);
        while (millisecondsSince(begun) < frame) {
            QThread::usleep(static_cast<unsigned long>(1000 * sleep));
            QApplication::processEvents();
        }
        const double whole = millisecondsSince(begun);
        frames.push_back(whole > frame + 2 * sleep ? whole : first); // a sleep may end a little late
        empty.push_back(window.window.grid().emptyCells());
    }
    std::ranges::sort(frames);
    const auto blocked = window.application.takeLongest();
    fmt::print("  scrolling {:<24} median {:5.1f} ms, 95 % {:5.1f} ms, longest {:5.1f} ms; longest event "
               "{:.1f} ms, {:.1f} ms of work ({}); {}\n",
        how, frames[steps / 2], frames[steps * 95 / 100], frames.back(), blocked.milliseconds, blocked.worked,
        blocked.by, reportEmptyCells(window, empty));
}

void reportAction(Window& window, const char* what, const std::function<void(LibraryStore&)>& action)
{
    window.settle();
    window.application.takeLongest();
    const auto begun = Clock::now();
    action(window.store());
    const double called = millisecondsSince(begun);
    window.settle();
    const double done = millisecondsSince(begun);
    const auto blocked = window.application.takeLongest();
    fmt::print("  {:<34} call {:7.1f} ms, longest event {:7.1f} ms, all done {:7.1f} ms\n", what, called,
        blocked.milliseconds, done);
}

std::vector<PhotoID> firstShown(LibraryStore& store, std::size_t count)
{
    std::vector<PhotoID> ids;
    for (const auto position : store.list().shown())
        if (ids.size() < count)
            ids.push_back(store.list().items()[position].id);
    return ids;
}

void reportActions(Window& window)
{
    const auto sorted = [](std::optional<SortKey> key) {
        return [key](LibraryStore& store) { store.arrange(key, store.list().filter()); };
    };
    const auto filtered = [](std::optional<GridFilter> filter) {
        return [filter](LibraryStore& store) { store.arrange(store.list().sortKey(), filter); };
    };
    const auto searched = [](const char* words) {
        return [words](LibraryStore& store) { store.narrow(rulesOf(SearchFilter{.words = words})); };
    };
    const auto source = [](std::optional<LibrarySource> chosen) {
        return [chosen](LibraryStore& store) { store.chooseSource(chosen); };
    };
    reportAction(window, "sort by file date", sorted(SortKey::fileDate));
    reportAction(window, "sort by rating", sorted(SortKey::rating));
    reportAction(window, "rate one photo, sorted by rating",
        [](LibraryStore& store) { setRating(store, firstShown(store, 1), 1); });
    reportAction(window, "sort by name", sorted(SortKey::name));
    reportAction(window, "no order of its own", sorted(std::nullopt));
    reportAction(window, "filter starred", filtered(GridFilter::starred));
    reportAction(window, "no filter", filtered(std::nullopt));
    reportAction(window, "search one word", searched("temple"));
    reportAction(window, "search two words", searched("kyoto 4711"));
    reportAction(window, "search nothing", searched(""));
    reportAction(window, "select all", [](LibraryStore& store) { store.select(firstShown(store, ~0ULL)); });
    reportAction(window, "select one", [](LibraryStore& store) { store.select(firstShown(store, 1)); });
    reportAction(
        window, "rate 1 photo", [](LibraryStore& store) { setRating(store, firstShown(store, 1), 4); });
    reportAction(window, "rate 10,000 photos",
        [](LibraryStore& store) { setRating(store, firstShown(store, 10'000), 3); });
    reportAction(window, "title one photo",
        [](LibraryStore& store) { setMetadataField(store, firstShown(store, 1), 1, "Another title"); });
    reportAction(
        window, "remove one photo", [](LibraryStore& store) { removePhotos(store, firstShown(store, 1)); });
    reportAction(window, "undo", [](LibraryStore& store) { store.undo(); });
    reportAction(window, "choose an album", source(LibrarySource{LibrarySource::Kind::album, 1}));
    reportAction(window, "choose a smart album", source(LibrarySource{LibrarySource::Kind::smartAlbum, 1}));
    reportAction(window, "choose flagged", source(LibrarySource{LibrarySource::Kind::flagged}));
    reportAction(window, "choose all photos", source(std::nullopt));
    reportAction(window, "another process rated a photo", [](LibraryStore& store) {
        Catalog other(store.catalog().libraryURL(), SystemClock());
        other.setRating(std::vector<PhotoID>{1}, 2);
        store.reloadIfChangedElsewhere();
    });
}

int runChild(WatchedApplication& application, const QStringList& arguments)
{
    const Clock::time_point begun(Clock::duration(arguments[3].toLongLong()));
    setvbuf(stdout, nullptr, _IOLBF, 0);
    applyTheme(application);
    Window window(application, arguments[2].toStdString());
    reportStart(window, begun);
    if (arguments[1] == "--start")
        return 0;
    reportScrolling(window, "slowly", by(20));
    reportScrolling(window, "slowly again", by(20));
    reportScrolling(window, "upwards slowly", by(-20));
    reportScrolling(window, "by the wheel", by(120));
    reportScrolling(window, "the same again", by(120));
    reportScrolling(window, "upwards by the wheel", by(-120));
    reportScrolling(window, "by pages", by(3000));
    reportScrolling(window, "upwards by pages", by(-3000));
    reportScrolling(window, "by 50 screens", by(50'000));
    reportScrolling(window, "to any place", anywhere());
    fmt::print("  memory after scrolling {:.0f} MB\n", peakMemory() / 1e6);
    reportActions(window);
    fmt::print("  most memory {:.0f} MB\n", peakMemory() / 1e6);
    return 0;
}

void runInProcess(const char* how, const QString& what, const fs::path& library)
{
    fmt::print("{}\n", how);
    std::fflush(stdout);
    const auto begun = Clock::now().time_since_epoch().count(); // of the clock that all processes share
    if (QProcess::execute(QCoreApplication::applicationFilePath(),
            {what, QString::fromStdString(library.string()), QString::number(begun)})
        != 0)
        throw std::runtime_error("the window's process failed");
}

void report(const fs::path& folder, const std::vector<fs::path>& pictures, int photos)
{
    const auto library = folder / std::to_string(photos) / "Library";
    makeWindowLibrary(library, pictures, photos);
    fmt::print("\n{} photos\n", photos);
    for (int start = 0; start < starts; ++start) {
        fs::remove_all(library / "Previews");
        runInProcess("start without previews:", "--start", library);
        runInProcess("start with previews:", "--start", library);
        fs::remove_all(library / "Backups");
        runInProcess("first start of the day:", "--start", library);
    }
    runInProcess("start, and work:", "--work", library);
    fs::remove_all(library.parent_path());
}

} // namespace

} // namespace korvo::bench

int main(int argc, char** argv)
{
    using namespace korvo::bench;
    korvo::keepFewHeapArenas(); // as the program
    qputenv("QT_QPA_PLATFORM", "offscreen");
    WatchedApplication application(argc, argv);
    const auto arguments = QApplication::arguments();
    if (arguments.size() > 1 && arguments[1].startsWith("--"))
        return runChild(application, arguments);
    const korvo::TemporaryFolder folder;
    std::vector<int> sizes;
    std::vector<fs::path> pictures;
    for (const auto& argument : arguments.mid(1))
        if (const int size = argument.toInt(); size > 0)
            sizes.push_back(size);
        else
            pictures.push_back(fs::absolute(argument.toStdString()));
    if (sizes.empty())
        sizes = {1'000, 100'000, 1'000'000};
    for (int number = 1, made = pictures.empty() ? madePictures : 0; number <= made; ++number)
        pictures.push_back(madePhoto(folder / fmt::format("{}.jpg", number), madeWidth, madeHeight, number));
    for (const int size : sizes)
        report(folder.path(), pictures, size);
}
