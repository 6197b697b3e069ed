#include "app/desktop/viewer/FullScreen.h"

#include <QCloseEvent>
#include <QVBoxLayout>

namespace korvo {

FullScreen::FullScreen(MainWindow& window, PhotoPage* page)
    : QWidget(&window, Qt::Window), desktop_(window.desktop()), page_(page),
      notice_(new NoticeLine(window.notices(), this))
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
    notice_->layout()->setContentsMargins(12, 6, 12, 6);
    notice_->setAutoFillBackground(true);
    noticesChanged_ = window.notices().changed.connect([this] { placeNotice(); });
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
    placeNotice();
}

void FullScreen::placeNotice()
{
    const auto& photo = page_->panes().front()->view();
    const int bottom = photo.mapTo(this, QPoint(0, photo.height())).y();
    const int height = notice_->sizeHint().height();
    notice_->setGeometry(0, bottom - height, width(), height);
    notice_->raise();
}

void FullScreen::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placeNotice();
}

void FullScreen::closeEvent(QCloseEvent* event)
{
    event->accept();
    desktop_.browser().setMode(ViewMode::viewer);
}

} // namespace korvo
