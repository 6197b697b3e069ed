#include "app/desktop/viewer/SurveyPage.h"

#include "app/view/Survey.h"

#include <QApplication>

#include <algorithm>

namespace korvo {

SurveyPage::SurveyPage(MainWindow& window) : PhotoPage(window, ViewMode::survey)
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
    auto pane = std::make_unique<PhotoPane>(window_, PhotoFeed::Neighbours::none);
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
