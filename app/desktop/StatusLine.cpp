#include "app/desktop/Labels.h"
#include "app/desktop/MainWindow.h"
#include "app/desktop/Parts.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/sheets/FailureList.h"
#include "base/Text.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>

#include <utility>

namespace korvo {

namespace {

constexpr std::chrono::seconds noticeStays{5};
constexpr std::chrono::milliseconds jobShown{150};

QString number(std::size_t value)
{
    return QLocale().toString(static_cast<qulonglong>(value));
}

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
    void notice(const Notice& notice);
    void showNotice(const Notice& notice);
    void hideNotice();
    bool isOffered() const;
    void takeOffer();
    void showUnwritten();
    void sayWhatWasWritten();
    void showJob();
    void cancelJob();
    void showFailures();
    template <typename Widget>
    Widget* add(Widget* widget, const char* accessibleName);

    MainWindow& window_;
    Desktop& desktop_;
    bool saving_ = false;
    std::vector<Notice> errors_; // that were not closed yet; the last one is shown
    std::optional<std::uint64_t> undoes_,
        redoes_; // the step that the notice offers to take back or bring back
    QLabel* counts_;
    ElidedLabel* notice_;
    QToolButton* undo_;
    QToolButton* close_;
    QToolButton* unwritten_;
    ElidedLabel* job_;
    QProgressBar* progress_;
    QToolButton* cancel_;
    QToolButton* failures_;
    QTimer noticeTimer_, jobTimer_;
    Connection storeChanged_, noticed_, jobsChanged_, writeBackChanged_;
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
    : QObject(&window), window_(window), desktop_(window.desktop()), counts_(new QLabel),
      notice_(new ElidedLabel), undo_(new QToolButton), close_(new QToolButton),
      unwritten_(add(new QToolButton, "Not yet written to files")), job_(add(new ElidedLabel, "Running job")),
      progress_(add(new QProgressBar, "Progress")), cancel_(add(new QToolButton, "Cancel the job")),
      failures_(add(new QToolButton, "Failures"))
{
    auto* const bar = window_.statusBar();
    bar->setSizeGripEnabled(false);
    counts_->setContentsMargins(8, 3, 12, 3);
    bar->addWidget(counts_);
    bar->addWidget(notice_);
    bar->addWidget(undo_);
    bar->addWidget(close_);
    close_->setText("Close");
    cancel_->setText("Cancel");
    progress_->setMaximumWidth(140);
    progress_->setMaximumHeight(14);
    progress_->setTextVisible(false);
    unwritten_->setToolTip("Write metadata to the files now (Ctrl+S)");
    connect(undo_, &QToolButton::clicked, this, [this] { takeOffer(); });
    connect(close_, &QToolButton::clicked, this, [this] {
        errors_.pop_back();
        hideNotice();
    });
    connect(
        unwritten_, &QToolButton::clicked, this, [this] { window_.commands().run(Command::saveMetadata); });
    connect(cancel_, &QToolButton::clicked, this, [this] { cancelJob(); });
    connect(failures_, &QToolButton::clicked, this, [this] { showFailures(); });
    noticeTimer_.setSingleShot(true);
    connect(&noticeTimer_, &QTimer::timeout, this, [this] { hideNotice(); });
    connect(&jobTimer_, &QTimer::timeout, this, [this] { showJob(); });
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange&) {
        showCounts();
        undo_->setVisible(isOffered());
    });
    noticed_ = desktop_.noticed.connect([this](const Notice& said) { notice(said); });
    jobsChanged_ = desktop_.jobs().changed.connect([this] { showJob(); });
    writeBackChanged_ = desktop_.session().writeBack().changed.connect([this] { showUnwritten(); });
    hideNotice();
    showCounts();
    showUnwritten();
}

void StatusLine::showCounts()
{
    const auto shown = desktop_.store().list().shown().size();
    const auto selected = desktop_.store().selection().size();
    const auto& list = desktop_.store().list();
    const bool isReading = desktop_.store().isReading() && list.items().empty();
    QString text = isReading ? QString("Reading…") : number(shown) + " " + qt(plural(shown, "photo"));
    if (const auto& source = desktop_.store().source();
        source && source->kind == LibrarySource::Kind::versions && !list.items().empty())
        text = number(shown) + " " + qt(plural(shown, "version")) + " of "
            + qt(repairedUtf8(list.items().front().filename.view())) + " (Esc goes back)";
    if (selected > 0)
        text += ", " + number(selected) + " selected";
    counts_->setText(text);
}

/// Notes pass; errors stay until each was closed, and come back after a note.
void StatusLine::notice(const Notice& notice)
{
    if (notice.kind == Notice::Kind::error) {
        std::erase_if(errors_, [&](const Notice& earlier) { return earlier.text == notice.text; });
        errors_.push_back(notice);
    }
    showNotice(notice);
}

void StatusLine::showNotice(const Notice& notice)
{
    const bool isError = notice.kind == Notice::Kind::error;
    notice_->say(qt(notice.text));
    notice_->setStyleSheet(isError ? "color: " + QColor(theme::warning).name() : QString());
    notice_->show();
    undoes_ = notice.undoes;
    redoes_ = notice.redoes;
    undo_->setText(redoes_ ? "Redo" : "Undo");
    undo_->setVisible(isOffered());
    close_->setVisible(isError);
    close_->setText(errors_.size() > 1 ? "Close (" + number(errors_.size() - 1) + " more)" : "Close");
    if (isError)
        noticeTimer_.stop();
    else
        noticeTimer_.start(noticeStays);
}

/// Whether the step that is offered is still the one that comes next.
bool StatusLine::isOffered() const
{
    const auto& store = desktop_.store();
    return (undoes_ && undoes_ == store.undoStep()) || (redoes_ && redoes_ == store.redoStep());
}

/// Not by the commands, which take back whatever came last, such as the text that is being typed.
void StatusLine::takeOffer()
{
    const bool isPossible = window_.commands().settle() && isOffered();
    const bool isRedo = redoes_.has_value();
    hideNotice();
    if (isPossible && isRedo)
        desktop_.attempt([this] { desktop_.store().redo(); });
    else if (isPossible)
        desktop_.attempt([this] { desktop_.undo(); });
}

void StatusLine::hideNotice()
{
    noticeTimer_.stop();
    undoes_.reset();
    redoes_.reset();
    if (!errors_.empty())
        return showNotice(errors_.back());
    for (QWidget* const widget : std::initializer_list<QWidget*>{notice_, undo_, close_})
        widget->hide();
}

void StatusLine::showUnwritten()
{
    auto& writeBack = desktop_.session().writeBack();
    const auto count = static_cast<std::size_t>(writeBack.dirtyCount());
    const QString text = !writeBack.isSaving() ? number(count) + " not yet written"
        : writeBack.statusMessage().empty()    ? QString("Saving…")
                                               : qt(writeBack.statusMessage());
    unwritten_->setText(text);
    unwritten_->setVisible(count > 0 || writeBack.isSaving());
    window_.commands().refresh();
    if (std::exchange(saving_, writeBack.isSaving()) && !saving_)
        sayWhatWasWritten();
}

void StatusLine::sayWhatWasWritten()
{
    const auto& writeBack = desktop_.session().writeBack();
    notice({writeBack.hasFailed() ? Notice::Kind::error : Notice::Kind::note, writeBack.statusMessage()});
}

void StatusLine::showJob()
{
    const auto job = desktop_.jobs().running();
    for (QWidget* const widget : std::initializer_list<QWidget*>{job_, progress_, cancel_})
        widget->setVisible(job != nullptr);
    std::size_t failed = 0, running = 0;
    for (const auto& each : desktop_.jobs().all()) {
        failed += each->failures().size();
        running += each->isRunning() ? 1 : 0;
    }
    failures_->setVisible(failed > 0);
    failures_->setText(qt(counted(failed, "failure")));
    if (!job)
        return jobTimer_.stop();
    jobTimer_.start(jobShown);
    job_->say(jobText(*job) + (running > 1 ? ", and " + number(running - 1) + " more" : QString()));
    cancel_->setText(running > 1 ? "Cancel…" : "Cancel");
    progress_->setRange(0, job->total() > 0 ? 1000 : 0);
    if (job->total() > 0)
        progress_->setValue(static_cast<int>(1000 * job->done() / job->total()));
}

/// The only one that runs, or the one that is chosen of several.
void StatusLine::cancelJob()
{
    QMenu menu;
    std::shared_ptr<Job> only;
    for (const auto& job : desktop_.jobs().all()) {
        if (!job->isRunning())
            continue;
        only = job;
        auto* const action = menu.addAction(jobText(*job).replace("&", "&&"));
        action->setEnabled(!job->isCancelled());
        connect(action, &QAction::triggered, &menu, [weak = std::weak_ptr(job)] {
            if (const auto chosen = weak.lock())
                chosen->cancel();
        });
    }
    if (menu.actions().size() > 1)
        menu.exec(cancel_->mapToGlobal(QPoint(0, -menu.sizeHint().height())));
    else if (only)
        only->cancel();
    showJob();
}

/// Once the list is closed, what it showed has been seen.
void StatusLine::showFailures()
{
    const auto jobs = desktop_.jobs().all();
    std::vector<std::string> failures;
    for (const auto& job : jobs)
        for (auto& failure : job->failures())
            failures.push_back(std::move(failure));
    connect(korvo::showFailures(window_, failures), &QDialog::finished, this,
        [this, jobs] { desktop_.jobs().forget(jobs); });
}

} // namespace

void addStatusLine(MainWindow& window)
{
    new StatusLine(window); // the window's child
}

} // namespace korvo
