#include "app/desktop/viewer/Pages.h"

#include "app/Survey.h"
#include "app/desktop/photos/PhotoSigns.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <limits>

namespace korvo {

namespace {

constexpr int notch = 120; // of a wheel
constexpr auto toTheEnd = std::numeric_limits<int>::max();

QString percent(double scale)
{
    return QString("%1 %").arg(qRound(100 * scale));
}

} // namespace

PhotoPane::PhotoPane(MainWindow& window, int viewer, PhotoFeed::Neighbours neighbours)
    : desktop_(window.desktop()), view_(new PhotoView(desktop_, viewer, neighbours)),
      bar_(new MarksBar(window))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(view_, 1);
    layout->addWidget(bar_);
    setFocusProxy(view_);
    feedChanged_ = view_->feed().changed.connect([this] {
        showNote();
        describe();
    });
    zoomed_ = view_->zoomed.connect([this] { showNote(); });
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange&) { describe(); });
    describe();
}

void PhotoPane::setPhoto(std::optional<PhotoID> photo)
{
    bar_->setPhoto(photo);
    view_->setPhoto(photo);
    showNote();
    describe();
}

/// In words, for those who do not see it.
void PhotoPane::describe()
{
    if (!photo() && view_->feed().item())
        return; // a file, which has its title
    const auto* const item = view_->feed().item();
    const auto picture = view_->feed().isBroken() ? PictureState::broken : PictureState::fine;
    const auto words = item ? spokenText(*item, signsOf(desktop_, *item, picture)) : QString("No photo");
    if (words != view_->accessibleName())
        view_->setAccessibleName(words);
}

void PhotoPane::setFile(const std::filesystem::path& file, const QString& title)
{
    if (file.empty())
        view_->setPhoto(std::nullopt);
    else
        view_->setFile(file);
    bar_->setTitle(title);
    showNote();
    view_->setAccessibleName(title);
}

void PhotoPane::setLook(Look look)
{
    look_ = look;
    view_->setLook(look);
    showNote();
}

void PhotoPane::showNote()
{
    const auto& list = desktop_.store().list();
    const auto shown = photo();
    const auto place = shown ? list.shownPosition(*shown) : std::nullopt;
    QStringList parts;
    if (look_ == Look::before)
        parts << "Before";
    else if (view_->feed().isLoading())
        parts << "Loading…";
    if (!view_->feed().screen().full.isEmpty())
        parts << percent(view_->zoom().scale());
    if (place)
        parts << QString("%1 of %2").arg(*place + 1).arg(list.shown().size());
    bar_->setNote(parts.join("  ·  "));
}

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
}

void PhotoPage::dress(PhotoPane& pane)
{
    pane.setLook(look_);
    pane.view().setLoupe(loupe_);
}

void PhotoPage::keyPressEvent(QKeyEvent* event)
{
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

SinglePage::SinglePage(MainWindow& window, ViewMode mode, int viewer)
    : PhotoPage(window, mode), pane_(new PhotoPane(window, viewer, PhotoFeed::Neighbours::ahead))
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

ComparePage::ComparePage(MainWindow& window, int viewer)
    : PhotoPage(window, ViewMode::compare),
      left_(new PhotoPane(window, viewer + 1, PhotoFeed::Neighbours::none)),
      right_(new PhotoPane(window, viewer, PhotoFeed::Neighbours::ahead))
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
    if (!std::exchange(wasOn_, isOn) && isOn)
        begin();
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

SurveyPage::SurveyPage(MainWindow& window, int viewer) : PhotoPage(window, ViewMode::survey), viewer_(viewer)
{
    setFocusPolicy(Qt::StrongFocus);
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange& change) {
        if (change.selection || change.list)
            follow(desktop_.browser().mode() == mode());
    });
    start();
}

PhotoPane* SurveyPage::active()
{
    for (const auto& place : places_)
        if (place.pane->photo() && place.pane->photo() == desktop_.browser().current())
            return place.pane.get();
    return nullptr;
}

std::vector<PhotoPane*> SurveyPage::panes()
{
    std::vector<PhotoPane*> result;
    for (const auto& place : places_)
        result.push_back(place.pane.get());
    return result;
}

void SurveyPage::addPane()
{
    auto pane = std::make_unique<PhotoPane>(
        window_, viewer_ + static_cast<int>(places_.size()), PhotoFeed::Neighbours::none);
    pane->setParent(this);
    pane->view().setClickZooms(false);
    auto clicked = pane->view().clicked.connect([this, shown = pane.get()] {
        if (shown->photo())
            desktop_.browser().setCurrent(*shown->photo());
    });
    dress(*pane);
    places_.push_back({std::move(pane), std::move(clicked)});
}

void SurveyPage::follow(bool isOn)
{
    const auto photos = isOn ? surveyed(desktop_.store()) : std::vector<PhotoID>();
    while (places_.size() < photos.size())
        addPane();
    while (places_.size() > photos.size()) {
        if (places_.back().pane->isAncestorOf(QApplication::focusWidget()))
            setFocus(); // or the keys would go nowhere
        places_.pop_back();
    }
    arrange();
    for (std::size_t i = 0; i < photos.size(); ++i) {
        places_[i].pane->setPhoto(photos[i]);
        places_[i].pane->view().setActive(photos[i] == desktop_.browser().current());
    }
}

void SurveyPage::step(std::ptrdiff_t places)
{
    const auto photos = surveyed(desktop_.store());
    const auto at = std::ranges::find(photos, desktop_.browser().current().value_or(0)) - photos.begin();
    const auto last = std::ssize(photos) - 1;
    if (last >= 0)
        desktop_.browser().setCurrent(
            photos[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(at + places, 0, last))]);
}

void SurveyPage::resizeEvent(QResizeEvent*)
{
    arrange();
}

void SurveyPage::arrange()
{
    const auto cells = surveyCells(places_.size(), {width(), height()});
    for (std::size_t i = 0; i < places_.size(); ++i) {
        places_[i].pane->setGeometry(cells[i].left, cells[i].top, cells[i].width, cells[i].height);
        places_[i].pane->show();
    }
}

} // namespace korvo
