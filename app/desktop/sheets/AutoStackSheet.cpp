#include "app/desktop/Labels.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"
#include "app/desktop/sheets/StackPreview.h"
#include "catalog/store/GroupActions.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QSlider>
#include <QTimer>
#include <QVBoxLayout>

namespace korvo {

namespace {

/// Plans the stacks of what the grid shows, and makes them when that is confirmed.
class AutoStackSheet : public QDialog {
public:
    explicit AutoStackSheet(MainWindow& window);
    ~AutoStackSheet() override { desktop_.leftTasks().take(std::move(task_)); }

private:
    QLayout* makeSlider();
    void makeButtons();
    void readShots();
    void begin(std::function<void(const Task::Context&)> work);
    void plan();
    void showPlan(AutoStackPlan plan);
    void stack();

    Desktop& desktop_;
    QSlider* slider_;
    QLabel* result_;
    StackPreview* preview_;
    QDialogButtonBox* buttons_;
    QPushButton* stack_;
    std::shared_ptr<const std::vector<AutoStackShot>> shots_; // by time; none until they are sorted
    bool planning_ = false;
    bool isStale_ = false; // the photos have changed while it plans
    int planned_ = 0; // the interval whose plan is shown or made
    QTimer readAgain_; // once a second at most, while the photos change all the time
    Connection storeChanged_;
    Task task_;
};

AutoStackSheet::AutoStackSheet(MainWindow& window)
    : QDialog(&window), desktop_(window.desktop()), slider_(new QSlider(Qt::Horizontal)),
      result_(plainLabel()), preview_(new StackPreview(desktop_)), buttons_(new QDialogButtonBox)
{
    setWindowTitle(qt(autoStackSheet::title));
    setWindowModality(Qt::WindowModal);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(dimLabel(qt(autoStackSheet::explanation)));
    layout->addSpacing(6);
    layout->addLayout(makeSlider());
    layout->addWidget(result_);
    layout->addWidget(preview_, 1);
    makeButtons();
    layout->addWidget(buttons_);
    resize(560, 520);
    slider_->setFocus();
    readAgain_.setSingleShot(true);
    readAgain_.setInterval(std::chrono::seconds(1));
    connect(&readAgain_, &QTimer::timeout, this, [this] { readShots(); });
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange& change) {
        if ((change.list || !change.photos.empty()) && !readAgain_.isActive())
            readAgain_.start();
    });
    readShots();
}

QLayout* AutoStackSheet::makeSlider()
{
    slider_->setRange(autoStackSheet::shortestInterval, autoStackSheet::longestInterval);
    slider_->setValue(autoStackSheet::startInterval);
    slider_->setAccessibleName(qt(autoStackSheet::interval));
    connect(slider_, &QSlider::valueChanged, this, [this] { plan(); });
    auto* const row = new QHBoxLayout;
    auto* const label = plainLabel(qt(autoStackSheet::interval));
    label->setBuddy(slider_);
    row->addWidget(label);
    row->addSpacing(12);
    row->addWidget(plainLabel(qt(autoStackSheet::shortest)));
    row->addWidget(slider_, 1);
    row->addWidget(plainLabel(qt(autoStackSheet::longest)));
    return row;
}

void AutoStackSheet::makeButtons()
{
    buttons_->addButton(qt(autoStackSheet::cancel), QDialogButtonBox::RejectRole);
    stack_ = buttons_->addButton(qt(autoStackSheet::stack), QDialogButtonBox::AcceptRole);
    stack_->setEnabled(false);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons_, &QDialogButtonBox::accepted, this, [this] { stack(); });
}

/// Only what counts of the photos is copied here; a million of them are sorted elsewhere. The plan that is
/// shown stays till the new one is there: what was stacked meanwhile is left out when it is carried out.
void AutoStackSheet::readShots()
{
    isStale_ = planning_; // the plan that is being made is waited for, lest none is ever ready
    if (planning_)
        return;
    const auto& list = desktop_.store().list();
    planning_ = true;
    begin([this,
              all = std::make_shared<std::vector<AutoStackShot>>(autoStackShots(list.items(), list.shown()))](
              const Task::Context& context) {
        sortByTime(*all);
        context.deliver([this, all] {
            shots_ = all;
            planning_ = false;
            planned_ = 0;
            plan();
        });
    });
}

void AutoStackSheet::begin(std::function<void(const Task::Context&)> work)
{
    desktop_.leftTasks().take(std::move(task_));
    task_ = runInBackground(desktop_.mainThread(), std::move(work));
}

void AutoStackSheet::plan()
{
    const int interval = slider_->value();
    if (!shots_ || planning_ || interval == planned_)
        return;
    planning_ = true;
    planned_ = interval;
    begin([this, shots = shots_, interval](const Task::Context& context) {
        context.deliver([this, plan = AutoStackPlan(*shots, interval)] { showPlan(plan); });
    });
}

void AutoStackSheet::showPlan(AutoStackPlan plan)
{
    result_->setText(qt(autoStackText(plan, planned_)));
    stack_->setEnabled(!plan.groups().empty());
    preview_->show(std::move(plan));
    planning_ = false;
    if (isStale_)
        readShots();
    else
        this->plan(); // the slider may have moved on
}

void AutoStackSheet::stack()
{
    desktop_.attempt([&] {
        attemptIn(*this, [&] {
            autoStack(desktop_.store(), preview_->plan());
            accept();
        });
    });
}

} // namespace

QWidget* showAutoStackSheet(MainWindow& window)
{
    return showOne<AutoStackSheet>(window);
}

} // namespace korvo
