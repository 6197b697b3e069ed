#include "app/desktop/adjust/BrickBox.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/Texts.h"
#include "edits/DisabledBricks.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

namespace korvo {

BrickBox::BrickBox(Desktop& desktop, AdjustmentBrick brick)
    : desktop_(desktop), brick_(brick), switch_(new QCheckBox(qt(title(brick)).replace("&", "&&"))),
      reset_(new QToolButton)
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 6);
    layout->setSpacing(2);
    auto* const head = new QHBoxLayout;
    head->addWidget(switch_, 1);
    head->addWidget(reset_);
    layout->addLayout(head);
    for (const auto& slider : panelSliders(brick)) {
        rows_.push_back(new SliderRow(desktop, slider));
        layout->addWidget(rows_.back());
    }
    auto bold = switch_->font();
    bold.setBold(true);
    switch_->setFont(bold);
    switch_->setToolTip("Switch this group on or off; its values are kept");
    reset_->setText("Reset");
    reset_->setAutoRaise(true);
    reset_->setAccessibleName("Reset " + qt(title(brick)));
    connect(switch_, &QCheckBox::toggled, this, [this](bool isChecked) {
        if (isChecked)
            change("Switch On ", switchOn);
        else
            change("Switch Off ", switchOff);
    });
    connect(reset_, &QToolButton::clicked, this, [this] { change("Reset ", korvo::reset); });
}

void BrickBox::change(const char* verb, void (*how)(AdjustmentBrick, PhotoEdits&))
{
    desktop_.attempt([&] {
        desktop_.draft().apply(verb + std::string(title(brick_)),
            [how, brick = brick_](PhotoEdits& edits) { how(brick, edits); });
    });
}

void BrickBox::show(const PhotoEdits& edits)
{
    const QSignalBlocker quiet(switch_);
    const bool on = isOn(brick_, edits);
    switch_->setChecked(on);
    reset_->setEnabled(!on || !isNeutral(brick_, edits));
    for (auto* const row : rows_) {
        row->show(edits);
        row->setEnabled(on);
    }
}

} // namespace korvo
