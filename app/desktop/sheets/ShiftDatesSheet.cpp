#include "app/desktop/Labels.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"
#include "base/Dates.h"
#include "metadata/DateAndPlaceSteps.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QSpinBox>

#include <array>

namespace korvo {

namespace {

struct TimeUnit {
    const char* name;
    int seconds;
    int most;
};
constexpr std::array<TimeUnit, 4> timeUnits{
    {{"days", 86'400, 36'500}, {"hours", 3'600, 23}, {"minutes", 60, 59}, {"seconds", 1, 59}}};

/// Asks how far capture dates are to be moved: for a camera whose clock was wrong.
class ShiftDatesSheet : public QDialog {
public:
    ShiftDatesSheet(MainWindow& window, std::vector<PhotoID> photos);

private:
    QLayout* makeFields();
    double shift() const;
    void refresh();
    void accept() override;

    Desktop& desktop_;
    std::vector<PhotoID> photos_;
    CompactOptional<UnixTime> first_; // the date of the first photo
    const char* whose_ = "First photo: ";
    std::array<QSpinBox*, timeUnits.size()> fields_{};
    QComboBox* way_ = new QComboBox;
    QLabel* example_ = plainLabel();
    QPushButton* shift_ = nullptr;
};

ShiftDatesSheet::ShiftDatesSheet(MainWindow& window, std::vector<PhotoID> photos)
    : QDialog(&window), desktop_(window.desktop()), photos_(std::move(photos))
{
    setWindowTitle("Shift Capture Dates");
    if (const auto* const item = desktop_.store().list().find(photos_.front())) {
        first_ = item->takenAt();
        if (!item->captureDate) // there is none, or it was not read yet
            whose_ = "First photo, by its file's date: ";
    }
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    shift_
        = buttons->addButton("Shift " + qt(counted(photos_.size(), "Photo")), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(makeFields());
    layout->addWidget(example_);
    layout->addWidget(
        dimLabel("The dates are moved in the library and in the files. A photo without a capture date is "
                 "moved from its file's date."));
    layout->addStretch(1);
    layout->addWidget(buttons);
    refresh();
}

QLayout* ShiftDatesSheet::makeFields()
{
    auto* const row = new QHBoxLayout;
    for (std::size_t i = 0; i < timeUnits.size(); ++i) {
        auto*& field = fields_[i];
        field = new QSpinBox;
        field->setRange(0, timeUnits[i].most);
        field->setSuffix(QStringLiteral(" ") + timeUnits[i].name);
        field->setAccessibleName(timeUnits[i].name);
        connect(field, &QSpinBox::valueChanged, this, [this] { refresh(); });
        row->addWidget(field);
    }
    way_->addItems({"Later", "Earlier"});
    way_->setAccessibleName("Direction");
    connect(way_, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
    row->addWidget(way_);
    return row;
}

double ShiftDatesSheet::shift() const
{
    double seconds = 0;
    for (std::size_t i = 0; i < timeUnits.size(); ++i)
        seconds += fields_[i]->value() * static_cast<double>(timeUnits[i].seconds);
    return way_->currentIndex() == 0 ? seconds : -seconds;
}

void ShiftDatesSheet::refresh()
{
    if (first_)
        example_->setText(qt(whose_ + localDateTime(*first_) + " → " + localDateTime(*first_ + shift())));
    shift_->setEnabled(shift() != 0);
}

void ShiftDatesSheet::accept()
{
    attemptIn(*this, [this] {
        shiftDates(desktop_.session().writeBack(), desktop_.store(), photos_, shift());
        QDialog::accept();
    });
}

} // namespace

QWidget* showShiftDates(MainWindow& window)
{
    auto* const sheet = new ShiftDatesSheet(window, window.desktop().browser().targets());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
    return sheet;
}

} // namespace korvo
