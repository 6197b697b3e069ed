#include "app/desktop/adjust/SliderRow.h"

#include "app/desktop/Desktop.h"
#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

using namespace std::chrono_literals;

constexpr auto quietAfterKey = 700ms; // until a slider that was moved by keys counts as let go
constexpr int stepsOfAPage = 10;

} // namespace

SliderRow::SliderRow(Desktop& desktop, const PanelSlider& slider)
    : desktop_(desktop), slider_(slider), name_(plainLabel(qt(slider.label))),
      bar_(new QSlider(Qt::Horizontal)), field_(new QDoubleSpinBox)
{
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(name_);
    layout->addWidget(bar_, 1);
    layout->addWidget(field_);
    name_->setBuddy(field_);
    // Equal columns in all rows, wide enough for the longest.
    name_->setFixedWidth(fontMetrics().horizontalAdvance("Temperature") + 8);
    field_->setFixedWidth(fontMetrics().horizontalAdvance("-0.00 EV") + 14);
    bar_->setRange(stepOf(slider.lower), stepOf(slider.upper));
    bar_->setSingleStep(stepOf(slider.lower + slider.step) - stepOf(slider.lower));
    bar_->setPageStep(bar_->singleStep() * stepsOfAPage);
    bar_->setAccessibleName(qt(slider.label));
    bar_->setToolTip("Double-click to reset");
    bar_->setFocusPolicy(Qt::StrongFocus); // not by the wheel, which scrolls the panel
    field_->setRange(slider.lower, slider.upper);
    field_->setDecimals(slider.decimals);
    field_->setSingleStep(slider.step);
    field_->setButtonSymbols(QAbstractSpinBox::NoButtons);
    field_->setAlignment(Qt::AlignRight);
    field_->setKeyboardTracking(false);
    field_->setAccessibleName(qt(slider.label));
    if (!slider.unit.empty())
        field_->setSuffix(" " + qt(slider.unit));
    auto* const line = field_->findChild<QLineEdit*>();
    for (QWidget* const part : std::initializer_list<QWidget*>{name_, bar_, field_, line})
        part->installEventFilter(this);
    connect(bar_, &QSlider::valueChanged, this, [this](int step) { moved(step); });
    connect(
        bar_, &QSlider::sliderReleased, this, [this] { desktop_.attempt([&] { desktop_.draft().keep(); }); });
    connect(field_, &QDoubleSpinBox::valueChanged, this, [this](double value) { typed(value); });
}

int SliderRow::stepOf(double value) const
{
    return static_cast<int>(std::lround(value * std::pow(10.0, slider_.decimals)));
}

double SliderRow::valueOf(int step) const
{
    return step / std::pow(10.0, slider_.decimals);
}

std::string SliderRow::title() const
{
    return "Change " + std::string(slider_.label);
}

void SliderRow::show(const PhotoEdits& edits)
{
    const double value = slider_.value(edits);
    const QSignalBlocker quietBar(bar_), quietField(field_);
    bar_->setValue(stepOf(value));
    // Other programs' values may lie beyond what the slider offers.
    field_->setRange(std::min(slider_.lower, value), std::max(slider_.upper, value));
    if (field_->value() != value)
        field_->setValue(value);
}

void SliderRow::moved(int step)
{
    desktop_.attempt([&] {
        desktop_.draft().show(title(),
            [&slider = slider_, value = valueOf(step)](PhotoEdits& edits) { slider.setValue(edits, value); });
    });
    letGo_.reset();
    if (!bar_->isSliderDown())
        letGo_ = desktop_.mainThread().postAfter(
            quietAfterKey, [this] { desktop_.attempt([&] { desktop_.draft().keep(); }); });
}

void SliderRow::typed(double value)
{
    desktop_.attempt([&] {
        desktop_.draft().apply(
            title(), [&slider = slider_, value](PhotoEdits& edits) { slider.setValue(edits, value); });
    });
}

void SliderRow::reset()
{
    desktop_.attempt([&] {
        if (desktop_.draft().isMoved() && desktop_.draft().title() == title())
            desktop_.draft().drop();
        desktop_.draft().apply("Reset " + std::string(slider_.label),
            [&slider = slider_](PhotoEdits& edits) { slider.reset(edits); });
    });
}

bool SliderRow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonDblClick) {
        if (watched == name_ || watched == bar_)
            reset();
        else
            field_->selectAll(); // a word would end at the point
        return true;
    }
    if (event->type() == QEvent::Wheel && !static_cast<QWidget*>(watched)->hasFocus()) {
        event->ignore(); // scrolls the panel
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace korvo
