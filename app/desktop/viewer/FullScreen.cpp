#include "app/desktop/viewer/FullScreen.h"

#include <QCloseEvent>
#include <QVBoxLayout>

namespace korvo {

FullScreen::FullScreen(MainWindow& window, PhotoPage* page)
    : QWidget(&window, Qt::Window), desktop_(window.desktop()), page_(page)
{
    setWindowTitle("Photo");
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(page);
    auto black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);
    for (auto* const pane : page->panes())
        pane->view().setBackdrop(Qt::black);
    addActions(window.actions());
    window.commands().addCentre(*this);
    browserChanged_ = desktop_.browser().changed.connect([this] { follow(); });
}

void FullScreen::follow()
{
    const bool isOn = desktop_.browser().mode() == ViewMode::fullScreen;
    if (isOn == isVisible())
        return;
    if (!isOn)
        return hide();
    if (const auto* const screen = parentWidget()->screen())
        setGeometry(screen->geometry());
    showFullScreen();
    page_->setFocus();
}

void FullScreen::closeEvent(QCloseEvent* event)
{
    event->accept();
    desktop_.browser().setMode(ViewMode::viewer);
}

} // namespace korvo
