#include "app/desktop/viewer/ComparePage.h"

#include <QHBoxLayout>

namespace korvo {

ComparePage::ComparePage(MainWindow& window)
    : PhotoPage(window, ViewMode::compare), left_(new PhotoPane(window, PhotoFeed::Neighbours::none)),
      right_(new PhotoPane(window, PhotoFeed::Neighbours::ahead))
{
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(left_, 1);
    layout->addWidget(right_, 1);
    right_->view().setActive(true);
    setFocusProxy(right_);
    const auto follow = [this](PhotoView& leader, PhotoView& other, std::size_t first) {
        followed_[first] = leader.zoomed.connect([&] { other.followZoom(leader.zoom()); });
        followed_[first + 1]
            = leader.pointed.connect([&](std::optional<QPointF> place) { other.followLoupe(place); });
    };
    follow(left_->view(), right_->view(), 0);
    follow(right_->view(), left_->view(), 2);
    drawn_ = right_->view().feed().changed.connect([this] {
        if (showsReference_)
            left_->view().showAsWideAs(right_->view().feed());
    });
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange& change) {
        if (change.list && desktop_.browser().mode() == mode())
            listChanged();
    });
    start();
}

void ComparePage::follow(bool isOn)
{
    const bool wasOn = std::exchange(wasOn_, isOn);
    if (!wasOn && isOn)
        begin();
    else if (wasOn && !isOn)
        end();
    if (isOn && beside_ != desktop_.browser().current())
        beside_.reset(); // the user has gone on
    if (isOn && stays_->photo() && stays_->photo() == desktop_.browser().current())
        passOverStaying();
    showsReference_ = showsReference_ && isOn;
    if (!isOn)
        stays_->setPhoto(std::nullopt);
    else if (showsReference_)
        showReference();
    steps_->setPhoto(isOn ? desktop_.browser().current() : std::nullopt);
}

/// The first two of the selected, else the current photo and its reference, the next one, or the one before
/// it at the end.
void ComparePage::begin()
{
    auto& browser = desktop_.browser();
    const auto current = browser.current();
    const auto* const item = browser.currentItem();
    showsReference_ = item && !item->referencePath.empty() && desktop_.store().selection().size() <= 1;
    if (showsReference_)
        return;
    stays_->setPhoto(current);
    for (const PhotoID id : desktop_.store().selection())
        if (id != current && desktop_.store().list().shownPosition(id))
            return browser.setCurrent(id);
    browser.step(1);
    if (browser.current() == current)
        browser.step(-1);
    beside_ = browser.current();
}

/// Back in the grid, the photo that was compared is where it was left, unless the user has gone on from the
/// one that came in beside it.
void ComparePage::end()
{
    auto& browser = desktop_.browser();
    const auto beside = std::exchange(beside_, {});
    if (beside && beside == browser.current() && browser.mode() == ViewMode::grid && stays_->photo())
        browser.setCurrent(*stays_->photo());
}

void ComparePage::showReference()
{
    const auto* const item = desktop_.browser().currentItem();
    if (item && !item->referencePath.empty())
        left_->setFile(item->referencePath.string(), "Aperture");
    else
        left_->setFile({}, "Aperture has no render of this photo");
}

/// No photo stands beside itself: the way goes on behind it, or back where it is the last.
void ComparePage::passOverStaying()
{
    auto& browser = desktop_.browser();
    const auto& list = desktop_.store().list();
    const auto from = steps_->photo() ? list.shownPosition(*steps_->photo()) : std::nullopt;
    const int ahead = from > list.shownPosition(*stays_->photo()) ? -1 : 1;
    browser.step(ahead);
    if (browser.current() == stays_->photo())
        browser.step(-ahead);
}

void ComparePage::swapRoles()
{
    std::swap(stays_, steps_);
    left_->view().setActive(steps_ == left_);
    right_->view().setActive(steps_ == right_);
}

/// Commands act on the current photo: this one is that until its menu has gone.
void ComparePage::showMenu(PhotoPane& pane, QPoint at)
{
    if (&pane != stays_)
        return PhotoPage::showMenu(pane, at);
    swapRoles();
    PhotoPage::showMenu(pane, at);
    swapRoles();
    if (desktop_.browser().mode() == mode() && steps_->photo())
        desktop_.browser().setCurrent(*steps_->photo());
}

/// A photo has left the list: two others stand beside each other, as long as there are two.
void ComparePage::listChanged()
{
    if (showsReference_)
        return;
    auto& browser = desktop_.browser();
    const auto isShown = [this](std::optional<PhotoID> photo) {
        return photo && desktop_.store().list().shownPosition(*photo);
    };
    if (!isShown(stays_->photo()))
        stays_->setPhoto(browser.current());
    if (stays_->photo() != browser.current())
        return;
    browser.step(1);
    if (stays_->photo() == browser.current())
        browser.step(-1);
}

} // namespace korvo
