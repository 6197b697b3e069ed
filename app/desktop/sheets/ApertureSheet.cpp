#include "app/ImportAperture.h"
#include "app/desktop/Labels.h"
#include "app/desktop/sheets/FolderField.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"
#include "app/desktop/window/NewWindow.h"
#include "app/pictures/RenderMatch.h"
#include "base/Text.h"
#include "base/UserError.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>

namespace korvo {

namespace {

/// Imports an Aperture library, as a job that goes on when the sheet is closed: opened again, the sheet is
/// the one that follows it.
class ApertureSheet : public QDialog {
public:
    explicit ApertureSheet(MainWindow& window);
    ~ApertureSheet() override { desktop_.leftTasks().take(std::move(looking_)); }

private:
    QLayout* makeForm();
    QLayout* makeProgress();
    void makeButtons();
    void bundleChanged();
    void lookForVolumes();
    void showVolumes(const std::map<std::string, std::size_t>& volumes, const std::string& fault);
    ApertureImport chosen() const;
    void start();
    void stop();
    void showProgress(const ApertureImporter::Progress& progress);
    void finished(const Job& job, const std::optional<ApertureImported>& imported);
    void openImported();

    Desktop& desktop_;
    FolderField* bundle_;
    QRadioButton* beside_;
    QRadioButton* here_;
    QWidget* volumesBox_;
    QFormLayout* volumes_;
    std::map<std::string, FolderField*> volumeFields_;
    QCheckBox* match_;
    QLabel* status_;
    QProgressBar* progress_;
    QPushButton* stop_;
    QDialogButtonBox* buttons_;
    QPushButton* import_;
    std::weak_ptr<Job> job_;
    std::filesystem::path imported_;
    Task looking_;
};

ApertureSheet::ApertureSheet(MainWindow& window)
    : QDialog(&window), desktop_(window.desktop()), bundle_(new FolderField(tr("Aperture Library"))),
      beside_(new QRadioButton), here_(new QRadioButton(tr("Into this library"))), volumesBox_(new QWidget),
      volumes_(new QFormLayout(volumesBox_)), match_(new QCheckBox(tr("Match Aperture's renders"))),
      status_(plainLabel()), progress_(new QProgressBar), stop_(new QPushButton(tr("Stop")))
{
    setWindowTitle(tr("Import Aperture Library"));
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(makeForm());
    layout->addWidget(volumesBox_);
    status_->setWordWrap(true);
    status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(status_);
    layout->addLayout(makeProgress());
    layout->addStretch(1);
    volumesBox_->hide();
    makeButtons();
    connect(&bundle_->edit(), &QLineEdit::textChanged, this, [this] { bundleChanged(); });
    resize(600, 360);
    bundleChanged();
}

QLayout* ApertureSheet::makeForm()
{
    auto* const form = new QVBoxLayout;
    form->addWidget(dimLabel(tr(
        "Photos, versions, projects, albums, stacks, keywords and adjustments are taken over. The Aperture "
        "library itself is only read; its originals stay where they are.")));
    form->addSpacing(8);
    form->addWidget(plainLabel(tr("Aperture library")));
    form->addWidget(bundle_);
    form->addSpacing(8);
    beside_->setChecked(true);
    form->addWidget(beside_);
    form->addWidget(here_);
    form->addSpacing(8);
    form->addWidget(match_);
    form->addWidget(
        dimLabel(tr("Finds for each adjusted version the tone curve that comes closest to Aperture's own "
                    "picture. Takes its time.")));
    return form;
}

QLayout* ApertureSheet::makeProgress()
{
    auto* const row = new QHBoxLayout;
    progress_->setTextVisible(false);
    progress_->hide();
    stop_->setAutoDefault(false);
    stop_->hide();
    connect(stop_, &QPushButton::clicked, this, [this] { stop(); });
    row->addWidget(progress_, 1);
    row->addWidget(stop_);
    return row;
}

void ApertureSheet::makeButtons()
{
    buttons_ = new QDialogButtonBox(QDialogButtonBox::Close);
    import_ = buttons_->addButton(tr("Import"), QDialogButtonBox::AcceptRole);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::close);
    connect(buttons_, &QDialogButtonBox::accepted, this, [this] { start(); });
    layout()->addWidget(buttons_);
}

void ApertureSheet::bundleChanged()
{
    const auto bundle = pathOf(bundle_->edit().text());
    beside_->setText(bundle.empty()
            ? tr("Into a new library beside it")
            : tr("Into a new library beside it, “%1”").arg(qt(libraryBeside(bundle).filename().native())));
    import_->setEnabled(!bundle.empty());
    status_->clear();
    showVolumes({}, {});
    lookForVolumes();
}

void ApertureSheet::lookForVolumes()
{
    desktop_.leftTasks().take(std::exchange(looking_, {}));
    looking_ = runInBackground(
        desktop_.mainThread(), [this, bundle = pathOf(bundle_->edit().text())](const Task::Context& context) {
            std::map<std::string, std::size_t> volumes;
            std::string fault;
            try {
                if (std::error_code none; std::filesystem::is_directory(bundle, none))
                    volumes = unreachableVolumes(bundle, {}, context.stopToken());
            } catch (const std::exception& error) {
                fault = textForUser(error);
            }
            context.deliver([=, this] { showVolumes(volumes, fault); });
        });
}

void ApertureSheet::showVolumes(const std::map<std::string, std::size_t>& volumes, const std::string& fault)
{
    while (volumes_->rowCount() > 0)
        volumes_->removeRow(0);
    volumeFields_.clear();
    for (const auto& [name, count] : volumes) {
        auto* const field = new FolderField(tr("Where is the volume “%1”?").arg(qt(name)));
        volumes_->addRow(qt(name + " (" + counted(count, "photo") + ")"), field);
        volumeFields_[name] = field;
    }
    volumesBox_->setVisible(!volumes.empty());
    if (!volumes.empty())
        status_->setText(
            tr("These volumes of referenced photos are not connected. Name their places, or import "
               "without those photos."));
    else
        status_->setText(qt(fault));
}

ApertureImport ApertureSheet::chosen() const
{
    ApertureImport import{.bundle = pathOf(bundle_->edit().text())};
    if (here_->isChecked())
        import.into = desktop_.store().catalog().libraryURL();
    for (const auto& [name, field] : volumeFields_)
        if (const auto place = field->edit().text(); !place.isEmpty())
            import.volumes[name] = pathOf(place);
    return import;
}

void ApertureSheet::start()
{
    const QPointer<ApertureSheet> sheet(this);
    auto& desktop = desktop_;
    const auto matching = match_->isChecked() ? Matching::on : Matching::off;
    const auto imported = std::make_shared<std::optional<ApertureImported>>();
    setAttribute(Qt::WA_DeleteOnClose, false); // closed meanwhile, it comes back with what it runs
    import_->setEnabled(false);
    bundle_->setEnabled(false);
    progress_->setRange(0, 0);
    progress_->show();
    stop_->setEnabled(true);
    stop_->show();
    const auto work = [sheet, &desktop, matching, imported, import = chosen()](JobContext& job) mutable {
        if (matching == Matching::on)
            import.match = matchBy(desktop.imageReader(), job.stop());
        const auto show = [&](const ApertureImporter::Progress& progress) {
            job.progress(progress.done, progress.total);
            job.deliver([sheet, progress] {
                if (sheet)
                    sheet->showProgress(progress);
            });
        };
        *imported = importAperture(import, desktop.clock(), desktop.defaults(), show, job.stop());
        return *imported ? summaryText((*imported)->summary, matching) : std::string("Nothing was imported.");
    };
    const auto finish = [sheet, &desktop, imported](const Job& job) {
        const bool isHere = *imported && (*imported)->library == desktop.store().catalog().libraryURL();
        if (isHere)
            desktop.attempt([&] { desktop.session().photosAdded(); });
        desktop.say(job.summary() + (isHere ? " Undo does not take this back." : ""));
        if (sheet)
            sheet->finished(job, *imported);
    };
    job_ = desktop_.jobs().start(
        "Importing " + chosen().bundle.filename().native(), Stopping::drops, work, finish);
}

/// Nothing of the import stays.
void ApertureSheet::stop()
{
    stop_->setEnabled(false);
    if (const auto job = job_.lock())
        job->cancel();
}

void ApertureSheet::showProgress(const ApertureImporter::Progress& progress)
{
    status_->setText(qt(progress.phase));
    progress_->setRange(0, static_cast<int>(progress.total));
    progress_->setValue(static_cast<int>(progress.done));
}

void ApertureSheet::finished(const Job& job, const std::optional<ApertureImported>& imported)
{
    setAttribute(Qt::WA_DeleteOnClose);
    if (!isVisible()) {
        deleteLater();
        return;
    }
    auto text = qt(job.summary());
    if (imported)
        for (const auto& note : translationNotes(imported->summary.report))
            text += "\n" + qt(note);
    status_->setText(text);
    progress_->hide();
    stop_->hide();
    bundle_->setEnabled(true);
    import_->setEnabled(!imported);
    if (!imported)
        return;
    imported_ = imported->library;
    if (imported_ == desktop_.store().catalog().libraryURL())
        return;
    // Not before: a box of buttons shows again those that were hidden.
    auto* const open = buttons_->addButton(tr("Open the New Library"), QDialogButtonBox::ActionRole);
    connect(open, &QPushButton::clicked, this, [this] { openImported(); });
}

/// Each library has a window of its own.
void ApertureSheet::openImported()
{
    attemptIn(*this, [this] {
        openInNewWindow(imported_);
        close();
    });
}

} // namespace

QWidget* showApertureImport(MainWindow& window)
{
    return showOne<ApertureSheet>(window);
}

} // namespace korvo
