#include "app/desktop/window/MainWindow.h"

#include "app/desktop/Adding.h"
#include "app/desktop/Texts.h"
#include "app/desktop/grid/GridView.h"
#include "app/desktop/photos/PhotoDrag.h"
#include "app/desktop/window/Parts.h"
#include "app/desktop/window/Quitting.h"

#include <QApplication>
#include <QDataStream>
#include <QDropEvent>
#include <QIODevice>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>

namespace korvo {

namespace {

constexpr std::chrono::seconds lookForOthers{2};

} // namespace

MainWindow::MainWindow(Desktop& desktop)
    : desktop_(desktop), commands_(desktop, *this), notices_(desktop, commands_),
      columns_(new QSplitter(Qt::Horizontal)), middle_(new QSplitter(Qt::Vertical)),
      stack_(new QStackedWidget), inspector_(new QTabWidget)
{
    middle_->addWidget(stack_);
    middle_->setStretchFactor(0, 1);
    columns_->addWidget(middle_);
    columns_->addWidget(inspector_);
    columns_->setStretchFactor(0, 1);
    for (const auto splitter : {middle_, columns_})
        splitter->setChildrenCollapsible(false);
    setCentralWidget(columns_);
    setAcceptDrops(true);
    setWindowTitle(qt(desktop.store().catalog().libraryURL().filename().string()) + " — Korvo");
    inspector_->setMinimumWidth(250);
    inspector_->setAccessibleName("Inspector");
    inspector_->setDocumentMode(true);
    inspector_->tabBar()->setDrawBase(false);
    makeCommands();
    addMarking(*this);
    addLibraryCommands(*this);
    addPhotoCommands(*this);
    addStackCommands(*this);
    addOpenRecent(*this);
    addSidebar(*this);
    addGrid(*this);
    addToolbar(*this);
    addStatusLine(*this);
    addViewer(*this);
    addInfo(*this);
    addAdjust(*this);
    addSheets(*this);
    commands_.fillMenus(*menuBar());
    commands_.addCentre(*middle_);
    browserChanged_ = desktop_.browser().changed.connect([this] { showMode(); });
    stepEnded_ = desktop_.store().stepEnded.connect([this](StepOutcome outcome) {
        if (std::exchange(closesAfterStep_, false) && outcome == StepOutcome::done)
            QTimer::singleShot(0, this, &QWidget::close); // after what else waits for the end of the step
    });
    connect(&otherProcesses_, &QTimer::timeout, this,
        [this] { desktop_.attempt([this] { desktop_.store().reloadIfChangedElsewhere(); }); });
    otherProcesses_.start(lookForOthers);
    for (const auto command : {Command::sidebar, Command::inspector, Command::filmstrip})
        commands_.setChecked(command, true);
    showMode();
    columns_->setSizes({220, 780, 280});
    if (centre())
        centre()->setFocus();
}

MainWindow::~MainWindow()
{
    delete takeCentralWidget(); // while what the parts refer to is still there
}

void MainWindow::setSidebar(QWidget* widget, Sidebar& sidebar)
{
    sidebar_ = widget;
    lines_ = &sidebar;
    columns_->insertWidget(0, widget);
    columns_->setStretchFactor(0, 0);
    columns_->setStretchFactor(1, 1);
}

void MainWindow::setGrid(GridView* grid)
{
    grid_ = grid;
    setCentre(ViewMode::grid, grid);
}

void MainWindow::setCentre(ViewMode mode, QWidget* widget)
{
    centres_[static_cast<std::size_t>(mode)] = widget;
    if (stack_->indexOf(widget) < 0)
        stack_->addWidget(widget);
}

void MainWindow::setFilmstrip(QWidget* widget)
{
    filmstrip_ = widget;
    middle_->addWidget(widget);
    showMode();
}

void MainWindow::addInspectorTab(const QString& title, QWidget* widget)
{
    inspector_->addTab(widget, title);
}

void MainWindow::addDropped(const QMimeData& dropped, const std::optional<SidebarNode>& onto)
{
    std::vector<std::filesystem::path> paths;
    for (const auto& url : dropped.urls())
        if (url.isLocalFile())
            paths.push_back(pathOf(url));
    addToLibrary(desktop_, std::move(paths), onto);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (holdsFiles(*event->mimeData()) && draggedPhotos(*event->mimeData()).empty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction); // the files stay where they are
    event->accept();
    addDropped(*event->mimeData());
}

QByteArray MainWindow::saveSides() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << columns_->saveState() << middle_->saveState() << !sidebar_->isHidden()
           << !inspector_->isHidden() << filmstripWanted_ << inspector_->currentIndex();
    return bytes;
}

void MainWindow::restoreSides(const QByteArray& bytes)
{
    QDataStream stream(bytes);
    QByteArray columns, middle;
    bool sidebar = true, inspector = true, filmstrip = true;
    int tab = 0;
    stream >> columns >> middle >> sidebar >> inspector >> filmstrip >> tab;
    if (stream.status() != QDataStream::Ok)
        return;
    columns_->restoreState(columns);
    middle_->restoreState(middle);
    showSides({sidebar, inspector});
    inspector_->setCurrentIndex(tab);
    setFilmstripWanted(filmstrip);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    auto& store = desktop_.store();
    const bool isKept = store.longStep() || (commands_.settle() && !desktop_.draft().isOpen());
    if (const auto* const step = store.longStep()) {
        closeAfter(*step);
        return event->ignore();
    }
    const auto jobs = desktop_.jobs().running();
    const auto correcting = desktop_.session().writeBack().correcting();
    if ((!isKept && !isLossWished(*this)) || (!jobs.empty() && !isEndWished(*this, jobs))
        || (!correcting.empty() && !isCutWished(*this, correcting)))
        return event->ignore();
    memory_.remember();
    QMainWindow::closeEvent(event);
    QApplication::quit(); // also while a full-screen photo or a sheet is open
}

void MainWindow::closeAfter(const std::string& step)
{
    if (!std::exchange(closesAfterStep_, true))
        desktop_.say("The window closes when “" + step + "” is done.");
}

void MainWindow::quitUnasked()
{
    for (const auto& job : desktop_.jobs().running())
        job->cancel(); // the step may wait for one
    desktop_.store().finishLongStep(); // nothing that is typed can be stored before
    commands_.settle();
    desktop_.store().finishLongStep();
    memory_.remember();
    QApplication::exit();
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow())
        return;
    if (desktop_.browser().mode() == ViewMode::fullScreen && QApplication::activeWindow() == this)
        desktop_.browser().setMode(ViewMode::viewer); // else keys would mean the photo behind this window
    desktop_.decoded().lookForChanges();
    desktop_.attempt([this] { desktop_.store().reloadIfChangedElsewhere(); });
}

void MainWindow::showPhotoMenu(QPoint at)
{
    if (desktop_.browser().targets().empty())
        return;
    QMenu menu(QApplication::activeWindow()); // this one, or that of the full-screen photo
    commands_.fillMenu(menu, CommandMenu::photo);
    menu.addSeparator();
    for (const auto command : {Command::copyAdjustments, Command::pasteAdjustments, Command::exportPhotos,
             Command::remove, Command::removeFromLibrary})
        menu.addAction(commands_.action(command));
    menu.exec(at);
}

QWidget* MainWindow::centre() const
{
    return stack_->currentWidget();
}

void MainWindow::setShown(QWidget& part, bool isShown)
{
    const auto* const focus = QApplication::focusWidget();
    if (!isShown && centre() && focus && (focus == &part || part.isAncestorOf(focus)))
        centre()->setFocus();
    part.setVisible(isShown);
}

void MainWindow::makeCommands()
{
    auto& browser = desktop_.browser();
    const auto mode = [&](Command command, ViewMode wanted) {
        commands_.handle(command, [&browser, wanted] { browser.setMode(wanted); });
    };
    mode(Command::grid, ViewMode::grid);
    mode(Command::viewer, ViewMode::viewer);
    mode(Command::compare, ViewMode::compare);
    mode(Command::survey, ViewMode::survey);
    commands_.handle(Command::fullScreenPhoto, [&browser] {
        browser.setMode(browser.mode() == ViewMode::fullScreen ? ViewMode::viewer : ViewMode::fullScreen);
    });
    commands_.handle(Command::cycle, [this] { cycleModes(); });
    commands_.handle(Command::space, [this, &browser] {
        if (browser.mode() == ViewMode::grid)
            browser.setMode(ViewMode::viewer);
        else
            commands_.run(Command::actualSize);
    });
    commands_.handle(Command::escape, [this] { leaveFieldOrCentre(); });
    commands_.handle(Command::nextPhoto, [&browser] { browser.step(1); });
    commands_.handle(Command::previousPhoto, [&browser] { browser.step(-1); });
    commands_.handle(Command::undo, [this] { desktop_.browser().undo(); });
    commands_.handle(Command::redo, [this] { desktop_.browser().redo(); });
    commands_.handle(Command::quit, [this] { close(); });
    commands_.handle(Command::hideSides, [this] { toggleSides(); });
    commands_.handle(Command::sidebar, [this] { toggle(Command::sidebar, sidebar_); });
    commands_.handle(Command::inspector, [this] { toggle(Command::inspector, inspector_); });
    commands_.handle(Command::filmstrip, [this] { setFilmstripWanted(!filmstripWanted_); });
    commands_.handle(
        Command::fullScreenWindow, [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
}

/// From the grid to the viewer above the filmstrip, to the viewer alone, and back.
void MainWindow::cycleModes()
{
    auto& browser = desktop_.browser();
    if (browser.mode() == ViewMode::viewer && filmstripWanted_)
        return setFilmstripWanted(false);
    if (browser.mode() == ViewMode::grid)
        setFilmstripWanted(true);
    browser.setMode(browser.mode() == ViewMode::grid ? ViewMode::viewer : ViewMode::grid);
}

void MainWindow::setFilmstripWanted(bool wanted)
{
    filmstripWanted_ = wanted;
    commands_.setChecked(Command::filmstrip, wanted);
    showMode();
}

void MainWindow::leaveFieldOrCentre()
{
    if (desktop_.browser().mode() == ViewMode::fullScreen) // a window of its own has the focus
        return desktop_.browser().setMode(ViewMode::viewer);
    if (centre() && !middle_->isAncestorOf(QApplication::focusWidget()))
        centre()->setFocus();
    else if (commands_.isTyping())
        return; // a text that could not be stored belongs to the photos that are shown
    else if (desktop_.browser().mode() != ViewMode::grid)
        desktop_.browser().setMode(ViewMode::grid);
    else
        desktop_.browser().leaveVersions();
}

/// Hides what is shown of both sides, or shows again what was hidden so.
void MainWindow::toggleSides()
{
    const Sides shown{!sidebar_->isHidden(), !inspector_->isHidden()};
    const bool hides = shown.sidebar || shown.inspector;
    showSides(hides ? Sides{false, false} : hiddenSides_);
    if (hides)
        hiddenSides_ = shown;
}

void MainWindow::showSides(Sides sides)
{
    setShown(*sidebar_, sides.sidebar);
    setShown(*inspector_, sides.inspector);
    commands_.setChecked(Command::sidebar, sides.sidebar);
    commands_.setChecked(Command::inspector, sides.inspector);
}

void MainWindow::toggle(Command command, QWidget* widget)
{
    if (!widget)
        return;
    setShown(*widget, widget->isHidden());
    commands_.setChecked(command, !widget->isHidden());
}

void MainWindow::showMode()
{
    const auto mode = desktop_.browser().mode();
    if (const auto widget = centres_[static_cast<std::size_t>(mode)]; widget && widget != centre()) {
        const bool hadFocus
            = !QApplication::focusWidget() || middle_->isAncestorOf(QApplication::focusWidget());
        stack_->setCurrentWidget(widget);
        if (hadFocus)
            widget->setFocus();
    }
    if (filmstrip_)
        setShown(*filmstrip_, filmstripWanted_ && mode != ViewMode::grid && mode != ViewMode::fullScreen);
}

} // namespace korvo
