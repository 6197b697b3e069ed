#include "app/desktop/window/Notices.h"

#include "app/desktop/Labels.h"
#include "app/desktop/SpokenRole.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"

#include <QHBoxLayout>
#include <QToolButton>

namespace korvo {

namespace {

constexpr std::chrono::seconds noticeStays{5};

} // namespace

Notices::Notices(Desktop& desktop, Commands& commands) : desktop_(desktop), commands_(commands)
{
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { pass(); });
    noticed_ = desktop_.noticed.connect([this](const Notice& notice) { say(notice); });
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange&) {
        if (shown_)
            changed.emit();
    });
}

void Notices::say(const Notice& notice)
{
    if (notice.kind == Notice::Kind::error) {
        std::erase_if(errors_, [&](const Notice& earlier) { return earlier.text == notice.text; });
        errors_.push_back(notice);
    } else if (notice.kind == Notice::Kind::news && isOffered()) {
        waiting_ = notice;
        return;
    }
    show(notice);
}

void Notices::show(const Notice& notice)
{
    shown_ = notice;
    waiting_.reset();
    if (notice.kind == Notice::Kind::error)
        timer_.stop();
    else
        timer_.start(noticeStays);
    changed.emit();
}

void Notices::pass()
{
    timer_.stop();
    if (!errors_.empty())
        return show(Notice(errors_.back()));
    if (waiting_)
        return show(Notice(*waiting_));
    shown_.reset();
    changed.emit();
}

void Notices::close()
{
    if (!errors_.empty())
        errors_.pop_back();
    pass();
}

bool Notices::isOffered() const
{
    const auto& store = desktop_.store();
    return shown_
        && ((shown_->undoes && shown_->undoes == store.undoStep())
            || (shown_->redoes && shown_->redoes == store.redoStep()));
}

/// Not by the commands, which take back whatever came last, such as the text that is being typed.
void Notices::takeOffer()
{
    const bool isRedo = shown_ && shown_->redoes;
    if (!commands_.settle())
        return; // which was said
    if (!isOffered())
        return desktop_.say("What you typed came later. Undo in the Edit menu takes back step by step.");
    pass();
    desktop_.attempt([&] {
        if (isRedo)
            desktop_.browser().redo();
        else
            desktop_.browser().undo();
    });
}

NoticeLine::NoticeLine(Notices& notices, QWidget* parent)
    : QWidget(parent), notices_(notices), text_(new ElidedLabel), offer_(new QToolButton),
      close_(new QToolButton)
{
    setSpokenRole(*this, QAccessible::Notification);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* const widget : std::initializer_list<QWidget*>{text_, offer_, close_})
        layout->addWidget(widget);
    connect(offer_, &QToolButton::clicked, &notices_, [this] { notices_.takeOffer(); });
    connect(close_, &QToolButton::clicked, &notices_, [this] { notices_.close(); });
    changed_ = notices_.changed.connect([this] { look(); });
    look();
}

void NoticeLine::look()
{
    const auto& notice = notices_.shown();
    announce(notice ? qt(notice->text) : QString());
    setVisible(notice.has_value());
    if (!notice)
        return;
    const bool isError = notice->kind == Notice::Kind::error;
    const auto further = notices_.furtherErrors();
    text_->say(qt(notice->text));
    text_->setStyleSheet(isError ? "color: " + QColor(theme::warning).name() : QString());
    offer_->setText(notice->redoes ? "Redo" : "Undo");
    offer_->setVisible(notices_.isOffered());
    close_->setText(further > 0 ? "Close (" + number(further) + " more)" : "Close");
    close_->setVisible(isError);
}

/// A notification is read aloud when it is shown, and is shown anew when it says something else.
void NoticeLine::announce(const QString& text)
{
    if (accessibleName() == text)
        return;
    setAccessibleName(text);
    QAccessibleEvent shown(this, QAccessible::ObjectShow);
    if (isVisible() && !text.isEmpty())
        QAccessible::updateAccessibility(&shown);
}

} // namespace korvo
