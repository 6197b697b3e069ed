#include "app/desktop/FailureList.h"
#include "app/desktop/Labels.h"
#include "app/desktop/sheets/CandidatePane.h"
#include "app/desktop/sheets/ImportJob.h"
#include "app/desktop/sheets/ImportOptionsForm.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"
#include "app/desktop/sheets/SourceList.h"
#include "app/pictures/SourcePreviews.h"
#include "base/Text.h"
#include "base/UserError.h"
#include "imports/ImportWindow.h"

#include <QFileDialog>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QVBoxLayout>

namespace korvo {

namespace {

/// The import window: where from, what, and how. The import itself is a job of the main window, which goes on
/// when this one is closed.
class ImportSheet : public QDialog {
public:
    explicit ImportSheet(MainWindow& window);
    ~ImportSheet() override;

    void choose(const std::vector<std::filesystem::path>& paths) { sources_->add(paths); }

private:
    struct Listed : ListedSource {
        std::string fault;
    };

    QWidget* makeSources();
    QWidget* makeOptions();
    QLayout* makeBottom();
    void chooseFolder();
    void chooseFiles();
    void list(const ImportSource& source);
    void forgetSource();
    CandidateList::PictureOf pictures();
    std::shared_ptr<FileSource> stopListing();
    void leave(std::shared_ptr<FileSource> files);
    void listed(Listed found);
    void showState();
    void showPicked();
    void start();
    void importFrom(ImportPlan plan);
    void stop();
    void finished(const Job& job);

    MainWindow& window_;
    Desktop& desktop_;
    ImportSource source_;
    ListingState state_ = ListingState::nothingChosen;
    Listed listed_;
    std::unique_ptr<SourcePreviews> previews_; // of a camera
    bool running_ = false;
    SourceList* sources_;
    CandidatePane* candidates_;
    ImportOptionsForm* options_;
    QLabel* status_;
    QProgressBar* progress_;
    QPushButton* stop_;
    QPushButton* failures_;
    QPushButton* import_;
    std::weak_ptr<Job> job_;
    std::vector<std::string> failed_; // in the last import
    Task listing_;
};

ImportSheet::ImportSheet(MainWindow& window)
    : QDialog(&window, Qt::Window), window_(window), desktop_(window.desktop())
{
    setWindowTitle(tr("Import"));
    auto* const columns = new QSplitter;
    columns->addWidget(makeSources());
    candidates_ = new CandidatePane(
        desktop_.pictures(), [this] { return options_->duplicates(); }, [this] { showPicked(); });
    columns->addWidget(candidates_);
    columns->addWidget(makeOptions());
    columns->setStretchFactor(1, 1);
    columns->setSizes({230, 700, 300});
    columns->setChildrenCollapsible(false);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(columns, 1);
    layout->addLayout(makeBottom());
    resize(1180, 720);
    sources_->setFocus();
    showState();
}

ImportSheet::~ImportSheet()
{
    leave(stopListing());
}

QWidget* ImportSheet::makeSources()
{
    auto* const column = new QWidget;
    auto* const layout = new QVBoxLayout(column);
    layout->setContentsMargins(6, 8, 6, 8);
    sources_ = new SourceList(
        desktop_, {[this](const ImportSource& source) { list(source); }, [this] { forgetSource(); }});
    layout->addWidget(sources_, 1);
    const auto add = [&](const QString& text, void (ImportSheet::*act)()) {
        auto* const button = new QPushButton(text);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, act);
        layout->addWidget(button);
    };
    add(tr("Choose Folder…"), &ImportSheet::chooseFolder);
    add(tr("Choose Files…"), &ImportSheet::chooseFiles);
    return column;
}

QWidget* ImportSheet::makeOptions()
{
    options_ = new ImportOptionsForm(window_, [this] { candidates_->pickAll(); });
    auto* const area = new QScrollArea;
    area->setWidget(options_);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setMinimumWidth(270);
    return area;
}

QLayout* ImportSheet::makeBottom()
{
    status_ = plainLabel();
    progress_ = new QProgressBar;
    progress_->setMaximumWidth(200);
    progress_->setTextVisible(false);
    progress_->hide();
    stop_ = new QPushButton(tr("Stop"));
    stop_->setAutoDefault(false);
    stop_->hide();
    connect(stop_, &QPushButton::clicked, this, [this] { stop(); });
    failures_ = new QPushButton(tr("Failures…"));
    failures_->setAutoDefault(false);
    failures_->hide();
    connect(failures_, &QPushButton::clicked, this, [this] { showFailures(*this, failed_); });
    auto* const close = new QPushButton(tr("Close"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    import_ = new QPushButton(tr("Import"));
    import_->setDefault(true);
    connect(import_, &QPushButton::clicked, this, [this] { attemptIn(*this, [this] { start(); }); });
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(12, 10, 12, 10);
    row->setSpacing(8);
    row->addWidget(status_, 1);
    for (QWidget* const widget : std::initializer_list<QWidget*>{progress_, stop_, failures_, close, import_})
        row->addWidget(widget);
    return row;
}

void ImportSheet::chooseFolder()
{
    const auto folder = QFileDialog::getExistingDirectory(this, tr("Choose a Folder"));
    if (!folder.isEmpty())
        sources_->add({pathOf(folder)});
}

void ImportSheet::chooseFiles()
{
    std::vector<std::filesystem::path> paths;
    for (const auto& file : QFileDialog::getOpenFileNames(this, tr("Choose Photos or Videos")))
        paths.push_back(pathOf(file));
    if (!paths.empty())
        sources_->add(paths);
}

void ImportSheet::list(const ImportSource& source)
{
    auto earlier = stopListing();
    source_ = source;
    state_ = ListingState::listing;
    options_->setSource(source);
    status_->clear();
    failures_->hide();
    listing_ = runInBackground(desktop_.mainThread(),
        [this, source, earlier = std::move(earlier), &catalog = desktop_.store().catalog()](
            const Task::Context& context) mutable {
            auto found = std::make_shared<Listed>();
            try {
                static_cast<ListedSource&>(*found)
                    = listSource(source, catalog, context.stopToken(), std::move(earlier));
            } catch (const std::exception& error) {
                found->fault = textForUser(error);
            }
            context.deliver([this, found] { listed(std::move(*found)); });
        });
    showState();
}

void ImportSheet::forgetSource()
{
    leave(stopListing());
    source_ = {};
    state_ = ListingState::nothingChosen;
    showState();
}

/// Returns what was listed till now. A listing that is under way hears of it later.
std::shared_ptr<FileSource> ImportSheet::stopListing()
{
    candidates_->clear();
    if (previews_)
        desktop_.leftTasks().take(std::exchange(previews_, nullptr)->end());
    desktop_.leftTasks().take(std::move(listing_));
    return std::exchange(listed_, {}).files;
}

/// Cameras take their time.
void ImportSheet::leave(std::shared_ptr<FileSource> files)
{
    desktop_.leftTasks().take(runInBackground(
        desktop_.mainThread(), [left = std::move(files)](const Task::Context&) mutable { left.reset(); }));
}

void ImportSheet::listed(Listed found)
{
    listed_ = std::move(found);
    state_ = ListingState::listed;
    candidates_->show(listed_.listing, pictures());
    if (const auto left = listed_.listing.failures.size(); left > 0 && status_->text().isEmpty())
        status_->setText(qt(counted(left, "place") + " could not be looked into"));
    showState();
}

/// A camera's are fetched from it; other files are pictures themselves.
CandidateList::PictureOf ImportSheet::pictures()
{
    if (source_.kind != ImportSource::Kind::camera || !listed_.files)
        return [](const SourceFile& file) { return file.path; };
    previews_ = std::make_unique<SourcePreviews>(
        desktop_.mainThread(), listed_.files, [this] { candidates_->refresh(); });
    return [this](const SourceFile& file) { return previews_->find(file); };
}

void ImportSheet::showState()
{
    const auto text = paneText(state_, listed_.listing);
    candidates_->say(listed_.fault.empty() ? text : listed_.fault);
    showPicked();
}

void ImportSheet::showPicked()
{
    const auto& listing = listed_.listing;
    const auto count = pickedCount(listing);
    const bool lists = !listing.candidates.empty();
    import_->setText(count > 0 ? tr("Import ") + qt(counted(count, "Photo")) : tr("Import"));
    import_->setEnabled(count > 0 && !running_);
    options_->setExample(lists ? &listing.candidates.front() : nullptr, count);
    candidates_->refresh();
}

void ImportSheet::start()
{
    auto plan = planOf(listed_.listing, source_, options_->options());
    if (plan.files.empty())
        throw std::runtime_error(std::string(importWindow::nothingImportable));
    if (plan.copyTo && plan.copyTo->empty())
        throw std::runtime_error("Choose a folder for the copies.");
    desktop_.attempt([this] { options_->keep(); });
    running_ = true;
    setAttribute(Qt::WA_DeleteOnClose, false); // closed meanwhile, it comes back with what it runs
    failures_->hide();
    status_->setText(qt(statusText(plan.files.size())));
    progress_->setRange(0, static_cast<int>(plan.files.size()));
    progress_->setValue(0);
    progress_->show();
    stop_->show();
    stop_->setEnabled(true);
    import_->setEnabled(false);
    sources_->setEnabled(false);
    importFrom(std::move(plan));
}

/// The window may be closed while the job runs.
void ImportSheet::importFrom(ImportPlan plan)
{
    const QPointer<ImportSheet> sheet(this);
    const auto progress = [sheet](std::size_t index, const std::string& text) {
        if (!sheet)
            return;
        sheet->status_->setText(qt(text));
        sheet->progress_->setValue(static_cast<int>(index));
    };
    const auto ended = [sheet](const Job& job) {
        if (sheet)
            sheet->finished(job);
    };
    job_ = startImport(desktop_, listed_, std::move(plan), {progress, ended});
}

/// What was imported till then stays, and the next import goes on.
void ImportSheet::stop()
{
    stop_->setEnabled(false);
    if (const auto job = job_.lock())
        job->cancel();
}

/// The candidates are looked at again, since the library now holds what was imported.
void ImportSheet::finished(const Job& job)
{
    running_ = false;
    setAttribute(Qt::WA_DeleteOnClose);
    if (!isVisible()) {
        deleteLater();
        return;
    }
    sources_->setEnabled(true);
    progress_->hide();
    stop_->hide();
    const auto said = job.summary();
    failed_ = job.failures();
    if (state_ != ListingState::nothingChosen) // the card may have been taken out meanwhile
        list(source_);
    status_->setText(qt(said));
    failures_->setVisible(!failed_.empty());
}

} // namespace

QWidget* showImportWindow(MainWindow& window, const std::vector<std::filesystem::path>& from)
{
    auto* const sheet = showOne<ImportSheet>(window);
    if (!from.empty())
        sheet->choose(from);
    return sheet;
}

} // namespace korvo
