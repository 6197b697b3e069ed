#include "app/desktop/Labels.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QProgressBar>
#include <QPushButton>
#include <QUrl>

namespace korvo {

namespace {

using Autosave = MetadataWriteBack::Autosave;
using ModelCase = ModelStore::State::Case;

/// The settings: saving metadata by itself, the model for faces, the library's place. Each counts at once.
class SettingsSheet : public QDialog {
public:
    explicit SettingsSheet(MainWindow& window);

private:
    void addMetadata();
    void addFaces();
    void addLibrary();
    QLabel* addLine(const QString& text);
    void showMetadata();
    void showModel();

    Desktop& desktop_;
    QString saveKey_;
    QVBoxLayout* layout_;
    QCheckBox* autosave_;
    QLabel* autosaveHelp_;
    QLabel* toolMissing_;
    QLabel* modelState_;
    QProgressBar* modelProgress_;
    QPushButton* fetch_;
    QPushButton* cancel_;
    QPushButton* remove_;
    Connection metadataChanged_;
    Connection modelChanged_;
};

SettingsSheet::SettingsSheet(MainWindow& window)
    : QDialog(&window), desktop_(window.desktop()),
      saveKey_(
          window.commands().action(Command::saveMetadata)->shortcut().toString(QKeySequence::NativeText)),
      layout_(new QVBoxLayout(this))
{
    setWindowTitle(tr("Settings"));
    layout_->setContentsMargins(18, 18, 18, 12);
    addMetadata();
    layout_->addSpacing(18);
    addFaces();
    layout_->addSpacing(18);
    addLibrary();
    layout_->addStretch(1);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout_->addWidget(buttons);
    resize(560, 480);
    metadataChanged_ = desktop_.session().writeBack().changed.connect([this] { showMetadata(); });
    modelChanged_ = desktop_.faceModel().changed.connect([this] { showModel(); });
    showMetadata();
    showModel();
}

QLabel* SettingsSheet::addLine(const QString& text)
{
    auto* const label = dimLabel(text);
    layout_->addWidget(label);
    return label;
}

void SettingsSheet::addMetadata()
{
    layout_->addWidget(headingLabel(tr("Metadata")));
    autosave_ = new QCheckBox(qt(autosaveTexts(Autosave::on).label));
    layout_->addWidget(autosave_);
    autosaveHelp_ = addLine({});
    addLine(qt(autosaveTexts(Autosave::on).note));
    toolMissing_ = warning(plainLabel(qt(exiftoolRequired) + "." + exiftoolOnDebian));
    layout_->addWidget(toolMissing_);
    connect(autosave_, &QCheckBox::clicked, this, [this](bool on) {
        attemptIn(*this,
            [&] { desktop_.session().writeBack().setAutosaveToFiles(on ? Autosave::on : Autosave::off); });
        showMetadata();
    });
}

void SettingsSheet::showMetadata()
{
    const auto autosave = desktop_.session().writeBack().autosaveToFiles();
    autosave_->setChecked(autosave == Autosave::on);
    // The core's text names the key of another system.
    autosaveHelp_->setText(qt(autosaveTexts(autosave).explanation).replace(QStringLiteral("⌘S"), saveKey_));
    toolMissing_->setVisible(!locateExifTool(SystemTools::exifToolPlaces()));
}

void SettingsSheet::addFaces()
{
    layout_->addWidget(headingLabel(tr("Face Recognition")));
    addLine(tr("Faces are told apart by a model that is downloaded once. Photos never leave this computer."));
    auto* const row = new QHBoxLayout;
    modelState_ = plainLabel();
    modelState_->setWordWrap(true);
    row->addWidget(modelState_, 1);
    const auto add = [&](const QString& text, void (ModelStore::*act)()) {
        auto* const button = new QPushButton(text);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this,
            [this, act] { attemptIn(*this, [&] { (desktop_.faceModel().*act)(); }); });
        row->addWidget(button);
        return button;
    };
    fetch_ = add(tr("Download"), &ModelStore::fetch);
    cancel_ = add(tr("Cancel"), &ModelStore::cancel);
    remove_ = add(tr("Remove"), &ModelStore::remove);
    layout_->addLayout(row);
    modelProgress_ = new QProgressBar;
    modelProgress_->setTextVisible(false);
    layout_->addWidget(modelProgress_);
}

void SettingsSheet::showModel()
{
    const auto& state = desktop_.faceModel().state();
    const bool loads = state.which == ModelCase::downloading;
    modelState_->setText(qt(stateText(state)));
    modelState_->setPalette({});
    if (state.which == ModelCase::failed)
        warning(modelState_);
    fetch_->setVisible(state.which == ModelCase::missing || state.which == ModelCase::failed);
    cancel_->setVisible(loads);
    remove_->setVisible(state.which == ModelCase::ready);
    modelProgress_->setVisible(loads);
    modelProgress_->setRange(0, state.progress.fraction ? 1000 : 0);
    modelProgress_->setValue(static_cast<int>(state.progress.fraction.value_or(0) * 1000));
}

void SettingsSheet::addLibrary()
{
    const auto folder = qt(desktop_.store().catalog().libraryURL().native());
    layout_->addWidget(headingLabel(tr("Library")));
    auto* const row = new QHBoxLayout;
    auto* const path = plainLabel(folder);
    path->setWordWrap(true);
    path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* const open = new QPushButton(tr("Show in Folder"));
    open->setAutoDefault(false);
    connect(open, &QPushButton::clicked, this,
        [folder] { QDesktopServices::openUrl(QUrl::fromLocalFile(folder)); });
    row->addWidget(path, 1);
    row->addWidget(open);
    layout_->addLayout(row);
    addLine(tr("Holds the catalog, its daily backups and the previews. Photos stay where they are."));
}

} // namespace

QWidget* showSettings(MainWindow& window)
{
    return showOne<SettingsSheet>(window);
}

} // namespace korvo
