#include "app/desktop/sheets/ExportSheet.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "app/desktop/sheets/FolderField.h"
#include "app/desktop/sheets/PatternField.h"
#include "base/Json.h"
#include "base/JsonKept.h"
#include "base/Record.h"
#include "base/Text.h"
#include "imports/Naming.h"
#include "imports/NamingPreset.h"
#include "platform/AppFolders.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

namespace korvo {

enum class ExportSize { whole, limited };
KORVO_ENUM(ExportSize, whole, limited)

/// What the user chose last.
struct ExportChoice {
    std::string folder;
    PictureFormat format = PictureFormat::jpeg;
    ExportSize size = ExportSize::whole;
    std::int64_t pixels = 2048;
    std::int64_t quality = 90;
    std::string pattern = "{name}";
    bool withPosition = true;
};
KORVO_RECORD(ExportChoice, folder, format, size, pixels, quality, pattern, withPosition)

namespace {

constexpr auto choiceKey = "korvo_export";

QSpinBox* spinBox(int lower, int upper, const QString& suffix)
{
    auto* const box = new QSpinBox;
    box->setRange(lower, upper);
    box->setSuffix(suffix);
    return box;
}

QHBoxLayout* row(QWidget* first, QWidget* second)
{
    auto* const layout = new QHBoxLayout;
    layout->addWidget(first, 1);
    layout->addWidget(second);
    return layout;
}

/// The case that a menu, which lists all in their order, stands at.
template <typename Choice>
Choice chosenIn(const QComboBox& menu)
{
    return casesOf<Choice>.at(static_cast<std::size_t>(menu.currentIndex())).value;
}

std::string exported(
    const ExportTools& tools, const std::vector<PhotoID>& ids, const ExportPlan& plan, JobContext& job)
{
    job.progress(0, ids.size());
    const auto photos = tools.catalog.beside().photosByID(ids); // as they are stored: the list may be behind
    const auto result = runExport(
        tools, photos, plan, job.stop(), [&](std::size_t done) { job.progress(done, photos.size()); });
    for (const auto& failure : result.failures)
        job.fail(failure);
    return "Exported " + counted(result.written, "photo") + " to " + plan.folder.string() + ".";
}

} // namespace

void showExportSheet(MainWindow& window, std::vector<PhotoID> photos)
{
    if (photos.empty())
        return;
    auto* const sheet = new ExportSheet(window, std::move(photos));
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

ExportSheet::ExportSheet(MainWindow& window, std::vector<PhotoID> photos)
    : QDialog(&window), desktop_(window.desktop()), photos_(std::move(photos)),
      first_(desktop_.store().catalog().photo(photos_.front()).value_or(PhotoItem())),
      folder_(new FolderField("Export to")), format_(new QComboBox), size_(new QComboBox),
      pattern_(new PatternField(desktop_.defaults())), pixels_(spinBox(16, 100000, " pixels")),
      quality_(spinBox(1, 100, {})), withPosition_(new QCheckBox("Keep where the photos were taken")),
      example_(plainLabel())
{
    setWindowTitle("Export " + qt(counted(photos_.size(), "Photo")));
    format_->addItems({"JPEG", "PNG", "WebP", "TIFF"}); // in the order of PictureFormat
    size_->addItems({"All pixels", "Longer side at most"}); // in that of ExportSize
    auto* const tokens = plainLabel(qt(namingPresetEditor::help));
    for (auto* const label : {tokens, example_}) {
        label->setWordWrap(true);
        label->setForegroundRole(QPalette::PlaceholderText);
    }
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    export_ = buttons->addButton("Export", QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* const form = new QFormLayout(this);
    form->addRow("Folder", folder_);
    form->addRow("F&ormat", format_);
    form->addRow("&Quality", quality_);
    form->addRow("Size", row(size_, pixels_));
    form->addRow(QString(), withPosition_);
    form->addRow("&Names", pattern_);
    form->addRow(QString(), tokens);
    form->addRow(QString(), example_);
    form->addRow(buttons);
    setMinimumWidth(540);
    load();
    for (auto* const box : {format_, size_})
        connect(box, &QComboBox::currentTextChanged, this, [this] { refresh(); });
    for (auto* const edit : {&folder_->edit(), &pattern_->edit()})
        connect(edit, &QLineEdit::textChanged, this, [this] { refresh(); });
    refresh();
}

void ExportSheet::load()
{
    const ExportChoice usual{.folder = (picturesFolder() / "Exported").string()};
    const auto choice = fromKeptJson(desktop_.defaults().get(choiceKey).value_or(""), usual);
    folder_->edit().setText(qt(choice.folder));
    format_->setCurrentIndex(static_cast<int>(choice.format));
    size_->setCurrentIndex(static_cast<int>(choice.size));
    pixels_->setValue(static_cast<int>(choice.pixels));
    quality_->setValue(static_cast<int>(choice.quality));
    pattern_->edit().setText(qt(choice.pattern));
    withPosition_->setChecked(choice.withPosition);
}

void ExportSheet::save() const
{
    const ExportChoice choice{utf8(folder_->edit().text()), chosenIn<PictureFormat>(*format_),
        chosenIn<ExportSize>(*size_), pixels_->value(), quality_->value(), utf8(pattern_->edit().text()),
        withPosition_->isChecked()};
    desktop_.defaults().set(choiceKey, toJson(choice));
}

ExportPlan ExportSheet::plan() const
{
    return {.folder = pathOf(folder_->edit().text()),
        .format = chosenIn<PictureFormat>(*format_),
        .size = chosenIn<ExportSize>(*size_) == ExportSize::limited ? pixels_->value() : 0,
        .quality = quality_->value(),
        .pattern = utf8(pattern_->edit().text()),
        .position = withPosition_->isChecked() ? Position::keep : Position::strip};
}

void ExportSheet::refresh()
{
    const auto choice = plan();
    pixels_->setEnabled(chosenIn<ExportSize>(*size_) == ExportSize::limited);
    quality_->setEnabled(hasQuality(choice.format));
    example_->setText(qt(std::string(namingPresetEditor::example) + " "
        + baseName(listedFacts(first_), choice.pattern, {1, photos_.size()})
        + std::string(endingOf(choice.format))));
    export_->setEnabled(choice.folder.is_absolute());
}

void ExportSheet::accept()
{
    desktop_.attempt([this] { save(); });
    const auto work
        = [photos = photos_, choice = plan(),
              tools = ExportTools{desktop_.store().catalog(), desktop_.imageReader(), desktop_.exifTool()}](
              JobContext& job) { return exported(tools, photos, choice, job); };
    desktop_.store().whenFree([&desktop = desktop_, work] {
        desktop.jobs().start(
            "Export", Stopping::keeps, work, [&desktop](const Job& job) { desktop.say(job.summary()); });
    });
    QDialog::accept();
}

} // namespace korvo
