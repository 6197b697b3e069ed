#include "app/desktop/viewer/PhotoPage.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <limits>

namespace korvo {

namespace {

constexpr int notch = 120; // of a wheel
constexpr auto toTheEnd = std::numeric_limits<int>::max();

} // namespace

PhotoPage::PhotoPage(MainWindow& window, ViewMode mode)
    : window_(window), desktop_(window.desktop()), mode_(mode)
{ }

void PhotoPage::start()
{
    const auto look = [this] { follow(desktop_.browser().mode() == mode_); };
    browserChanged_ = desktop_.browser().changed.connect(look);
    look();
}

void PhotoPage::setLook(Look look)
{
    look_ = look;
    for (auto* const pane : panes())
        pane->setLook(look);
}

void PhotoPage::setLoupe(Loupe loupe)
{
    loupe_ = loupe;
    for (auto* const pane : panes())
        pane->view().setLoupe(loupe);
    const auto hasIt = [](PhotoPane* pane) { return pane->view().loupePoint().has_value(); };
    if (loupe == Loupe::on && active() && std::ranges::none_of(panes(), hasIt)) // no mouse is over a photo
        active()->view().moveLoupe(0, 0);
}

void PhotoPage::dress(PhotoPane& pane)
{
    pane.setLook(look_);
    pane.view().setLoupe(loupe_);
}

bool PhotoPage::moveAbout(const QKeyEvent& event)
{
    auto* const pane = active();
    const bool isWhole = !pane || pane->view().zoom().isFit();
    if (!event.modifiers().testFlag(Qt::ShiftModifier) || !pane || (isWhole && loupe_ == Loupe::off))
        return false;
    const auto go = [&](int right, int down) {
        if (isWhole)
            pane->view().moveLoupe(0.05 * right, 0.05 * down);
        else
            pane->view().panBy(-0.25 * right, -0.25 * down);
        return true;
    };
    switch (event.key()) {
    case Qt::Key_Right:
        return go(1, 0);
    case Qt::Key_Left:
        return go(-1, 0);
    case Qt::Key_Down:
        return go(0, 1);
    case Qt::Key_Up:
        return go(0, -1);
    default:
        return false;
    }
}

void PhotoPage::keyPressEvent(QKeyEvent* event)
{
    if (moveAbout(*event))
        return;
    switch (event->key()) {
    case Qt::Key_Right:
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        return step(1);
    case Qt::Key_Left:
    case Qt::Key_Up:
    case Qt::Key_PageUp:
        return step(-1);
    case Qt::Key_Home:
        return step(-toTheEnd);
    case Qt::Key_End:
        return step(toTheEnd);
    default:
        QWidget::keyPressEvent(event);
    }
}

void PhotoPage::wheelEvent(QWheelEvent* event)
{
    wheel_ += event->angleDelta().y();
    if (std::abs(wheel_) < notch)
        return;
    step(wheel_ > 0 ? -1 : 1);
    wheel_ = 0;
}

void PhotoPage::contextMenuEvent(QContextMenuEvent* event)
{
    const auto shown = panes();
    const auto under = std::ranges::find_if(
        shown, [&](PhotoPane* pane) { return pane->geometry().contains(event->pos()); });
    auto* const pane
        = event->reason() == QContextMenuEvent::Mouse && under != shown.end() ? *under : active();
    if (pane && pane->photo())
        showMenu(*pane, event->globalPos());
}

void PhotoPage::showMenu(PhotoPane& pane, QPoint at)
{
    desktop_.browser().setCurrent(*pane.photo());
    window_.showPhotoMenu(at);
}

SinglePage::SinglePage(MainWindow& window, ViewMode mode)
    : PhotoPage(window, mode), pane_(new PhotoPane(window, PhotoFeed::Neighbours::ahead))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(pane_);
    setFocusProxy(pane_);
    start();
}

void SinglePage::follow(bool isOn)
{
    pane_->setPhoto(isOn ? desktop_.browser().current() : std::nullopt);
}

} // namespace korvo
