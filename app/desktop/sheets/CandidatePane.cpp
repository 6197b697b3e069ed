#include "app/desktop/sheets/CandidatePane.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "imports/ImportWindow.h"

#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace korvo {

CandidatePane::CandidatePane(
    Pictures& pictures, std::function<Duplicates()> duplicates, std::function<void()> picked)
    : duplicates_(std::move(duplicates)), picked_(std::move(picked)), count_(plainLabel()),
      message_(plainLabel()), all_(new QPushButton(qt(importWindow::pickAll))),
      none_(new QPushButton(qt(importWindow::pickNone))), pages_(new QStackedWidget),
      list_(new CandidateList(pictures, picked_))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 8, 6, 0);
    auto* const line = new QHBoxLayout;
    line->addWidget(count_, 1);
    for (auto* const button : {all_, none_}) {
        button->setAutoDefault(false);
        line->addWidget(button);
    }
    connect(all_, &QPushButton::clicked, this, [this] { pickAll(); });
    connect(none_, &QPushButton::clicked, this, [this] { pickNone(); });
    message_->setAlignment(Qt::AlignCenter);
    message_->setWordWrap(true);
    pages_->addWidget(message_);
    pages_->addWidget(list_);
    layout->addLayout(line);
    layout->addWidget(pages_, 1);
}

void CandidatePane::show(ImportListing& listing, CandidateList::PictureOf pictureOf)
{
    listing_ = &listing;
    list_->show(listing_, std::move(pictureOf));
    pickAll();
}

void CandidatePane::clear()
{
    listing_ = nullptr;
    list_->show(nullptr);
}

void CandidatePane::say(std::optional<std::string_view> text)
{
    message_->setText(qt(text.value_or("")));
    pages_->setCurrentWidget(text ? static_cast<QWidget*>(message_) : list_);
}

void CandidatePane::refresh()
{
    const bool lists = listing_ && !listing_->candidates.empty();
    count_->setText(lists ? qt(pickedText(*listing_)) : QString());
    all_->setEnabled(lists);
    none_->setEnabled(lists);
    list_->refresh();
}

void CandidatePane::pickAll()
{
    if (listing_)
        pick(listing_->candidates, duplicates_());
    picked_();
}

void CandidatePane::pickNone()
{
    for (auto& candidate : listing_->candidates)
        candidate.picked = false;
    picked_();
}

} // namespace korvo
