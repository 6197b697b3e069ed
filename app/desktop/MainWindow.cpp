#include "app/desktop/MainWindow.h"

#include "app/desktop/Parts.h"
#include "app/desktop/Texts.h"

#include <QApplication>
#include <QMenuBar>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabWidget>

namespace korvo {

MainWindow::MainWindow(Desktop& desktop)
    : desktop_(desktop), commands_(desktop, *this), columns_(new QSplitter(Qt::Horizontal)),
      middle_(new QSplitter(Qt::Vertical)), stack_(new QStackedWidget), inspector_(new QTabWidget)
{
    middle_->addWidget(stack_);
    middle_->setStretchFactor(0, 1);
    columns_->addWidget(middle_);
    columns_->addWidget(inspector_);
    columns_->setStretchFactor(0, 1);
    for (const auto splitter : {middle_, columns_})
        splitter->setChildrenCollapsible(false);
    setCentralWidget(columns_);
    makeCommands();
    addSidebar(*this);
    addGrid(*this);
    addViewer(*this);
    addInfo(*this);
    addAdjust(*this);
    addSheets(*this);
    commands_.fillMenus(*menuBar());
    commands_.addCentre(*middle_);
    browserChanged_ = desktop_.browser().changed.connect([this] { showMode(); });
    showMode();
}

MainWindow::~MainWindow()
{
    delete takeCentralWidget(); // while what the parts refer to is still there
}

void MainWindow::setSidebar(QWidget* widget)
{
    sidebar_ = widget;
    columns_->insertWidget(0, widget);
    columns_->setStretchFactor(0, 0);
    columns_->setStretchFactor(1, 1);
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

QWidget* MainWindow::centre() const
{
    return stack_->currentWidget();
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
    commands_.handle(Command::undo, [this] { desktop_.store().undo(); });
    commands_.handle(Command::redo, [this] { desktop_.store().redo(); });
    commands_.handle(Command::quit, [this] { close(); });
    commands_.handle(Command::hideSides, [this] { setSidesShown(!inspector_->isVisible()); });
    commands_.handle(Command::sidebar, [this] { toggle(Command::sidebar, sidebar_); });
    commands_.handle(Command::inspector, [this] { toggle(Command::inspector, inspector_); });
    commands_.handle(Command::filmstrip, [this] {
        filmstripWanted_ = !filmstripWanted_;
        showMode();
    });
    commands_.handle(
        Command::fullScreenWindow, [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
}

void MainWindow::cycleModes()
{
    auto& browser = desktop_.browser();
    browser.setMode(browser.mode() == ViewMode::grid ? ViewMode::viewer : ViewMode::grid);
}

void MainWindow::leaveFieldOrCentre()
{
    if (desktop_.browser().mode() == ViewMode::fullScreen) // a window of its own has the focus
        return desktop_.browser().setMode(ViewMode::viewer);
    if (centre() && !middle_->isAncestorOf(QApplication::focusWidget()))
        centre()->setFocus();
    else
        desktop_.browser().setMode(ViewMode::grid);
}

void MainWindow::setSidesShown(bool shown)
{
    inspector_->setVisible(shown);
    if (sidebar_)
        sidebar_->setVisible(shown);
}

void MainWindow::toggle(Command command, QWidget* widget)
{
    if (!widget)
        return;
    widget->setVisible(!widget->isVisible());
    commands_.setChecked(command, widget->isVisible());
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
        filmstrip_->setVisible(filmstripWanted_ && mode != ViewMode::grid && mode != ViewMode::fullScreen);
}

} // namespace korvo
