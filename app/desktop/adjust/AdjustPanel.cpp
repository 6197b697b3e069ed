#include "app/desktop/adjust/AdjustPanel.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "base/Text.h"

#include <QFrame>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace korvo {

namespace {

constexpr int histogramSize = 640; // pixels of the longer side: more than three times what is counted

QPushButton* commandButton(Commands& commands, Command command, const QString& text, const QString& tip)
{
    auto* const action = commands.action(command);
    auto* const button = new QPushButton(text);
    button->setToolTip(tip);
    const auto follow = [action, button] { button->setEnabled(action->isEnabled()); };
    QObject::connect(action, &QAction::changed, button, follow);
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    follow();
    return button;
}

} // namespace

AdjustPanel::AdjustPanel(MainWindow& window)
    : desktop_(window.desktop()), feed_(desktop_, PhotoFeed::Neighbours::none), histogram_(new HistogramView),
      hint_(plainLabel()), controls_(new QWidget)
{
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(histogram_);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(commandButton(window.commands(), Command::autoAdjust, "Auto",
        "Analyze the photo and set a baseline exposure, contrast and vibrance (on-device). Nothing else "
        "changes."));
    buttons->addWidget(commandButton(window.commands(), Command::resetAdjustments, "Reset All",
        "Take all adjustments back; the crop and the turn stay"));
    layout->addLayout(buttons);
    hint_->setMinimumHeight(hint_->fontMetrics().height()); // so that the sliders keep their places
    hint_->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(hint_);

    auto* const list = new QVBoxLayout(controls_);
    list->setContentsMargins(0, 0, 8, 0);
    for (const auto brick : panelBricks()) {
        bricks_.push_back(new BrickBox(desktop_, brick));
        list->addWidget(bricks_.back());
    }
    list->addStretch(1);
    auto* const scroll = new QScrollArea;
    scroll->setWidget(controls_);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout->addWidget(scroll, 1);

    feed_.setSize(histogramSize);
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange&) { refresh(); });
    browserChanged_ = desktop_.browser().changed.connect([this] { refresh(); });
    draftChanged_ = desktop_.draft().changed.connect([this] { refresh(); });
    feedChanged_ = feed_.changed.connect([this] { refreshHistogram(); });
    refresh();
}

AdjustPanel::~AdjustPanel()
{
    keepDraft();
}

void AdjustPanel::keepDraft()
{
    desktop_.attempt([this] { desktop_.draft().keep(); });
}

void AdjustPanel::showEvent(QShowEvent*)
{
    refresh();
}

void AdjustPanel::hideEvent(QHideEvent*)
{
    keepDraft();
    refresh();
}

void AdjustPanel::refresh()
{
    const auto current = desktop_.browser().current();
    if (std::exchange(photo_, current) != current)
        keepDraft();
    feed_.setPhoto(isVisible() ? current : std::nullopt);
    if (!isVisible())
        return;
    const auto* const item = desktop_.browser().currentItem();
    const auto count = desktop_.browser().targetCount();
    controls_->setEnabled(item && count > 0);
    hint_->setText(!item || count == 0 ? "Select a photo to adjust it."
            : count > 1                ? "Changes apply to " + qt(counted(count, "photo")) + "."
                                       : QString());
    const auto edits = item ? desktop_.draft().editsOf(*item) : PhotoEdits();
    for (auto* const brick : bricks_)
        brick->show(edits);
}

void AdjustPanel::refreshHistogram()
{
    const auto& picture = feed_.screen();
    if (!feed_.item() || (!feed_.fault().isEmpty() && picture.full.isEmpty()))
        histogram_->show(emptyHistogram());
    else if (!picture.full.isEmpty()) // else the one before stays until there is a picture
        histogram_->show(picture.histogram);
}

} // namespace korvo
