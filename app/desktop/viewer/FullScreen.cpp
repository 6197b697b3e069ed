#include "app/desktop/viewer/FullScreen.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QVBoxLayout>
#include <QWindow>

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
    qApp->installEventFilter(this);
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
    const QSize size = notice_->sizeHint().boundedTo(QSize(width(), bottom));
    notice_->setGeometry(QRect(QPoint(0, bottom - size.height()), size));
    notice_->raise();
}

void FullScreen::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placeNotice();
}

/// Dialogs belong to the main window, which would come before the photo with them.
bool FullScreen::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && isVisible())
        if (const auto* const dialog = qobject_cast<QDialog*>(watched); dialog && dialog->windowHandle())
            dialog->windowHandle()->setTransientParent(windowHandle());
    return QWidget::eventFilter(watched, event);
}

void FullScreen::closeEvent(QCloseEvent* event)
{
    event->accept();
    desktop_.browser().setMode(ViewMode::viewer);
}

} // namespace korvo
