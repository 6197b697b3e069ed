#include "app/desktop/FailureList.h"
#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"
#include "app/desktop/window/Quitting.h"
#include "base/Text.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>

#include <utility>

namespace korvo {

namespace {

constexpr std::chrono::milliseconds jobShown{150};

QString jobText(const Job& job)
{
    const QString title = qt(job.title());
    if (job.isCancelled())
        return title + ": stopping…";
    QString text = title + " " + number(job.done());
    if (job.total() > 0)
        text += " of " + number(job.total());
    if (const double rate = job.perSecond(); rate >= 1)
        text += ", " + number(static_cast<std::size_t>(rate)) + " a second";
    return text;
}

/// How many photos, the last notice, what waits to be written, and the running job.
class StatusLine : public QObject {
public:
    explicit StatusLine(MainWindow& window);

private:
    void showCounts();
    void showUnwritten();
    void sayWhatWasWritten();
    void showJob();
    void cancelJob();
    void showFailureCount();
    void showFailures();
    template <typename Widget>
    Widget* add(Widget* widget, const char* accessibleName);

    MainWindow& window_;
    Desktop& desktop_;
    bool saving_ = false;
    QLabel* counts_;
    QToolButton* unwritten_;
    QToolButton* stop_; // of what is being written
    ElidedLabel* job_;
    QProgressBar* progress_;
    QToolButton* cancel_;
    QToolButton* failures_;
    QTimer jobTimer_;
    Connection storeChanged_, jobsChanged_, writeBackChanged_;
};

template <typename Widget>
Widget* StatusLine::add(Widget* widget, const char* accessibleName)
{
    widget->setAccessibleName(accessibleName);
    window_.statusBar()->addPermanentWidget(widget);
    widget->hide();
    return widget;
}

StatusLine::StatusLine(MainWindow& window)
    : QObject(&window), window_(window), desktop_(window.desktop()), counts_(plainLabel()),
      unwritten_(add(new QToolButton, "Not yet written to files")),
      stop_(add(new QToolButton, "Stop writing into files")), job_(add(new ElidedLabel, "Running job")),
      progress_(add(new QProgressBar, "Progress")), cancel_(add(new QToolButton, "Cancel the job")),
      failures_(add(new QToolButton, "Failures"))
{
    auto* const bar = window_.statusBar();
    bar->setSizeGripEnabled(false);
    counts_->setContentsMargins(8, 3, 12, 3);
    bar->addWidget(counts_);
    bar->addWidget(new NoticeLine(window_.notices()));
    cancel_->setText("Cancel");
    progress_->setMaximumWidth(140);
    progress_->setMaximumHeight(14);
    progress_->setTextVisible(false);
    stop_->setText("Stop");
    connect(stop_, &QToolButton::clicked, this, [this] { desktop_.session().writeBack().stopSaving(); });
    connect(
        unwritten_, &QToolButton::clicked, this, [this] { window_.commands().run(Command::saveMetadata); });
    connect(cancel_, &QToolButton::clicked, this, [this] { cancelJob(); });
    connect(failures_, &QToolButton::clicked, this, [this] { showFailures(); });
    connect(&jobTimer_, &QTimer::timeout, this, [this] { showJob(); });
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange&) { showCounts(); });
    jobsChanged_ = desktop_.jobs().changed.connect([this] { showJob(); });
    writeBackChanged_ = desktop_.session().writeBack().changed.connect([this] {
        showUnwritten();
        showFailureCount();
    });
    showCounts();
    showUnwritten();
}

void StatusLine::showCounts()
{
    const auto shown = desktop_.store().list().shown().size();
    const auto selected = desktop_.store().selection().size();
    const auto& list = desktop_.store().list();
    const bool isReading = desktop_.store().isReading() && list.items().empty();
    QString text = isReading ? QString("Reading…") : qt(counted(shown, "photo"));
    if (const auto& source = desktop_.store().source();
        source && source->kind == LibrarySource::Kind::versions && !list.items().empty()) {
        const auto versions = list.items().size() - 1; // the first is the photo itself
        text = qt(repairedUtf8(list.items().front().filename.view())) + " and "
            + (versions > 0 ? qt(counted(versions, "version")) : QString("no versions"))
            + " (Esc in the grid goes back)";
    }
    if (selected > 0)
        text += ", " + number(selected) + " selected";
    if (const auto* const step = desktop_.store().longStep())
        text += " – " + qt(*step) + "…";
    counts_->setText(text);
}

void StatusLine::showUnwritten()
{
    auto& writeBack = desktop_.session().writeBack();
    const auto count = static_cast<std::size_t>(writeBack.dirtyCount());
    const QString text = !writeBack.isSaving() ? number(count) + " not yet written"
        : writeBack.statusMessage().empty()    ? QString("Saving…")
                                               : qt(writeBack.statusMessage());
    unwritten_->setText(text);
    unwritten_->setToolTip(writeBack.isSaving() ? QString() : "Write metadata to the files now (Ctrl+S)");
    unwritten_->setVisible(count > 0 || writeBack.isSaving());
    stop_->setVisible(writeBack.isSaving());
    window_.commands().refresh();
    if (std::exchange(saving_, writeBack.isSaving()) && !saving_)
        sayWhatWasWritten();
}

void StatusLine::sayWhatWasWritten()
{
    const auto& writeBack = desktop_.session().writeBack();
    desktop_.noticed.emit(
        {writeBack.hasFailed() ? Notice::Kind::error : Notice::Kind::news, writeBack.statusMessage()});
}

void StatusLine::showJob()
{
    const auto jobs = desktop_.jobs().running();
    const auto running = jobs.size();
    for (QWidget* const widget : std::initializer_list<QWidget*>{job_, progress_, cancel_})
        widget->setVisible(running > 0);
    showFailureCount();
    if (jobs.empty())
        return jobTimer_.stop();
    jobTimer_.start(jobShown);
    const auto& job = jobs.front();
    job_->say(jobText(*job) + (running > 1 ? ", and " + number(running - 1) + " more" : QString()));
    cancel_->setText(running > 1 ? "Cancel…" : "Cancel");
    cancel_->setToolTip(running > 1 ? QString() : whatStoppingLeaves(*job));
    progress_->setRange(0, job->total() > 0 ? 1000 : 0);
    if (job->total() > 0)
        progress_->setValue(static_cast<int>(1000 * job->done() / job->total()));
}

/// The only one that runs, or the one that is chosen of several.
void StatusLine::cancelJob()
{
    const auto jobs = desktop_.jobs().running();
    if (jobs.size() == 1) {
        jobs.front()->cancel();
        return showJob();
    }
    QMenu menu;
    menu.setToolTipsVisible(true);
    for (const auto& job : jobs) {
        auto* const action = menu.addAction(jobText(*job).replace("&", "&&"));
        action->setToolTip(whatStoppingLeaves(*job));
        action->setEnabled(!job->isCancelled());
        connect(action, &QAction::triggered, &menu, [weak = std::weak_ptr(job)] {
            if (const auto chosen = weak.lock())
                chosen->cancel();
        });
    }
    if (!menu.isEmpty())
        menu.exec(cancel_->mapToGlobal(QPoint(0, -menu.sizeHint().height())));
    showJob();
}

/// Of all jobs, and of what was written into files last.
void StatusLine::showFailureCount()
{
    std::size_t failed = desktop_.session().writeBack().failures().size();
    for (const auto& job : desktop_.jobs().all())
        failed += job->failed();
    failures_->setVisible(failed > 0);
    failures_->setText(qt(counted(failed, "failure")));
}

/// Once the list is closed, what it showed has been seen.
void StatusLine::showFailures()
{
    const auto jobs = desktop_.jobs().all();
    std::vector<std::string> failures;
    for (const auto& job : jobs)
        for (auto& failure : job->failures())
            failures.push_back(std::move(failure));
    auto& writeBack = desktop_.session().writeBack();
    for (const auto& failure : writeBack.failures())
        failures.push_back(failure.message);
    connect(korvo::showFailures(window_, failures), &QDialog::finished, this, [this, jobs, &writeBack] {
        desktop_.jobs().forget(jobs);
        writeBack.forgetFailures();
    });
}

} // namespace

void addStatusLine(MainWindow& window)
{
    new StatusLine(window); // the window's child
}

} // namespace korvo
