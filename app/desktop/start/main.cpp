#include "app/Libraries.h"
#include "app/desktop/Adding.h"
#include "app/desktop/Ask.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/start/Application.h"
#include "app/desktop/start/FirstStart.h"
#include "app/desktop/start/Instance.h"
#include "app/desktop/start/Screenshot.h"
#include "app/desktop/start/Termination.h"
#include "app/desktop/window/MainWindow.h"
#include "base/UserError.h"
#include "platform/AppFolders.h"
#include "platform/FileDefaults.h"
#include "platform/HeapArenas.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>

namespace korvo {

namespace {

struct Options {
    std::optional<std::filesystem::path> library;
    std::optional<ScreenshotRequest> screenshot;
    std::vector<std::filesystem::path> add;
};

/// Pictures are taken without a display.
void chooseSystem(int argc, char** argv)
{
    const bool takesPicture = std::any_of(
        argv, argv + argc, [](const char* text) { return std::strncmp(text, "--screenshot", 12) == 0; });
    if (takesPicture && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

QSize sizeOf(const QString& text)
{
    const auto sides = text.split('x');
    const QSize size = sides.size() == 2 ? QSize(sides[0].toInt(), sides[1].toInt()) : QSize();
    if (size.width() < 320 || size.height() < 240 || size.width() > 16384 || size.height() > 16384)
        throw std::invalid_argument("--size takes WIDTHxHEIGHT, such as 1280x800");
    return size;
}

/// An argument byte for byte, as names need not be UTF-8.
std::filesystem::path pathOfArgument(const QString& argument, int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        if (QFile::decodeName(argv[i]) == argument)
            return std::filesystem::absolute(argv[i]);
    return std::filesystem::absolute(pathOf(argument)); // a part of one, as in --library=DIR
}

Options parsed(const QApplication& application, int argc, char** argv)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Manages and edits photos that stay where they are.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({"library", "The folder of the library; else the one opened last.", "DIR"});
    parser.addOption({"screenshot", "Writes a picture of the window as PNG and ends.", "FILE"});
    parser.addOption({"view", "What the picture shows: " + qt(screenshotViews()) + ".", "VIEW", "grid"});
    parser.addOption({"size", "The size of the picture's window.", "WxH", "1280x800"});
    parser.addPositionalArgument("FOLDER", "Photos to add to the library.", "[FOLDER…]");
    parser.process(application);
    Options options;
    if (parser.isSet("library"))
        options.library = pathOfArgument(parser.value("library"), argc, argv);
    if (parser.isSet("screenshot"))
        options.screenshot = {parser.value("screenshot"), parser.value("view"), sizeOf(parser.value("size"))};
    for (const auto& path : parser.positionalArguments())
        options.add.push_back(pathOfArgument(path, argc, argv));
    return options;
}

/// A library that is only named, in the environment or for a picture, is not made.
FirstStart existing(const std::filesystem::path& library, const Options& options)
{
    if (!holdsCatalog(library))
        throw std::runtime_error("no library in " + library.string() + ", or its disk is not connected");
    return {library, options.add};
}

/// The library that is asked for, the one opened last, or what the user chooses at the first start; nothing
/// when the user does not want any.
std::optional<FirstStart> startWith(const Options& options, const Defaults& defaults)
{
    if (options.library)
        return options.screenshot ? existing(*options.library, options)
                                  : FirstStart{*options.library, options.add};
    if (const char* const named = std::getenv("KORVO_LIBRARY"); named && *named)
        return existing(named, options);
    if (const auto last = lastLibrary(defaults))
        return FirstStart{*last, options.add};
    if (options.screenshot)
        throw std::runtime_error("no library yet: name one with --library DIR");
    if (const auto missing = missingLibrary(defaults)) {
        auto start = askForMissing(*missing);
        if (start)
            start->add.insert(start->add.end(), options.add.begin(), options.add.end());
        return start;
    }
    if (!options.add.empty())
        return FirstStart{usualLibrary(), options.add};
    return askAtFirstStart();
}

/// Runs the window; errors of events are its to show as long as it is there.
int show(Application& application, Desktop& desktop)
{
    application.failed = [&](const std::exception& error) { desktop.fail(error); };
    const int status = QApplication::exec();
    application.failed = nullptr;
    return status;
}

/// What may hang - a network drive, a camera - must not keep a program without a window alive. All that is
/// written is written so that its end at any moment loses nothing.
void endSoon()
{
    std::thread([] {
        std::this_thread::sleep_for(std::chrono::seconds(30));
        std::_Exit(0);
    }).detach();
}

int picture(Application& application, Desktop& desktop, const ScreenshotRequest& request)
{
    MainWindow window(desktop);
    window.resize(request.size);
    window.show();
    takeScreenshot(window, request);
    return show(application, desktop);
}

int run(Application& application, const Options& options)
{
    FileDefaults defaults(userDefaultsFolder());
    const SystemClock clock;
    const auto start = startWith(options, defaults);
    if (!start)
        return 0;
    std::function<void(Instance::Paths)> comeForward; // before there is a window, nobody can be told
    std::unique_ptr<Instance> instance;
    if (!options.screenshot) {
        instance = Instance::begin(
            start->library, start->add, [&](Instance::Paths add) { comeForward(std::move(add)); });
        if (!instance)
            return 0;
    }
    QtMainThread main;
    auto catalog = options.screenshot ? std::make_unique<Catalog>(start->library, clock)
                                      : openLibrary(start->library, clock, defaults);
    Desktop desktop(main, std::move(catalog), clock, defaults);
    if (options.screenshot)
        return picture(application, desktop, *options.screenshot);
    MainWindow window(desktop);
    comeForward = [&](Instance::Paths add) {
        window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
        window.raise();
        window.activateWindow();
        addToLibrary(desktop, std::move(add));
    };
    window.memory().restore();
    window.show();
    // Not only at the end, which a crash or a power cut leaves out, and not while the user waits for
    // something.
    QObject::connect(
        &application, &QGuiApplication::applicationStateChanged, &window, [&](Qt::ApplicationState state) {
            if (state != Qt::ApplicationActive)
                window.memory().rememberInBackground();
        });
    onTermination(window, [&] { window.quitUnasked(); });
    addToLibrary(desktop, start->add);
    const int status = show(application, desktop);
    desktop.store().finishLongStep(); // which is to end well, however long it takes
    instance.reset(); // another start must not wait for this end
    endSoon();
    return status;
}

} // namespace

} // namespace korvo

int main(int argc, char** argv)
{
    using namespace korvo;
    keepFewHeapArenas();
    chooseSystem(argc, argv);
    Application application(argc, argv);
    QApplication::setApplicationName("korvo-desktop");
    QApplication::setApplicationDisplayName("Korvo");
    QApplication::setApplicationVersion(KORVO_VERSION);
    QGuiApplication::setDesktopFileName("org.korvo.Korvo");
    applyTheme(application);
    try {
        return run(application, parsed(application, argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "korvo-desktop: %s\n", textForUser(error).c_str());
        if (QGuiApplication::platformName() != "offscreen")
            warn(qt(textForUser(error)));
        return dynamic_cast<const std::invalid_argument*>(&error) ? 2 : 1;
    }
}
