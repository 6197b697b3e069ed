#include "app/desktop/sheets/ImportOptionsForm.h"

#include "app/desktop/Texts.h"
#include "app/desktop/sheets/FolderField.h"
#include "app/desktop/sheets/PatternField.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"
#include "app/desktop/window/MainWindow.h"
#include "base/Json.h"
#include "base/JsonKept.h"
#include "imports/ImportWindow.h"
#include "imports/NamingPreset.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QVBoxLayout>

namespace korvo {

/// What the user chose last.
struct ImportChoice {
    bool copies = true;
    std::string folder;
    bool renames = false;
    std::string pattern = std::string(importWindow::defaultPattern);
    ImportOptions::Project project = ImportOptions::Project::none;
    std::string creator, copyright;
    bool ejects = false;
};
KORVO_RECORD(ImportChoice, copies, folder, renames, pattern, project, creator, copyright, ejects)

namespace {

using Project = ImportOptions::Project;

constexpr auto importChoiceKey = "korvo_import";
constexpr int keepingNames = 0, renaming = 1; // the entries of the names' menu

/// Without a home folder there is no default: the user names a folder.
std::string destinationAtFirst()
{
    try {
        return defaultDestination().native();
    } catch (const std::runtime_error&) {
        return {};
    }
}

ImportChoice lastChoice(const Defaults& defaults)
{
    auto choice = fromKeptJson(defaults.get(importChoiceKey).value_or(""), ImportChoice());
    if (choice.folder.empty())
        choice.folder = destinationAtFirst();
    return choice;
}

void addNodes(QComboBox& box, const std::vector<ProjectNode>& nodes, int depth)
{
    for (const auto& node : nodes) {
        box.addItem(QString(3 * depth, ' ') + qt(node.name), qlonglong(node.id));
        addNodes(box, node.children, depth + 1);
    }
}

Project projectOf(const QComboBox& box)
{
    return static_cast<Project>(box.currentIndex()); // both in the order of the menu
}

} // namespace

ImportOptionsForm::ImportOptionsForm(MainWindow& window, std::function<void()> duplicatesChanged)
    : window_(window), layout_(new QVBoxLayout(this))
{
    layout_->setContentsMargins(12, 12, 12, 12);
    layout_->setSpacing(4);
    addFiles();
    layout_->addSpacing(12);
    addNames();
    layout_->addSpacing(12);
    addProjects();
    layout_->addSpacing(12);
    addTexts();
    layout_->addSpacing(12);
    leaveOutDuplicates_ = new QCheckBox(qt(importWindow::leaveOutDuplicates));
    leaveOutDuplicates_->setChecked(true);
    connect(leaveOutDuplicates_, &QCheckBox::toggled, this, std::move(duplicatesChanged));
    eject_ = new QCheckBox(qt(importWindow::ejectAfterwards));
    layout_->addWidget(leaveOutDuplicates_);
    layout_->addWidget(eject_);
    layout_->addStretch(1);
    load();
    refresh();
}

void ImportOptionsForm::load()
{
    const auto choice = lastChoice(window_.desktop().defaults());
    copy_->setChecked(choice.copies);
    folder_->edit().setText(qt(choice.folder));
    naming_->setCurrentIndex(choice.renames ? renaming : keepingNames);
    pattern_->edit().setText(qt(choice.pattern));
    project_->setCurrentIndex(static_cast<int>(choice.project));
    creator_->setText(qt(choice.creator));
    copyright_->setText(qt(choice.copyright));
    eject_->setChecked(choice.ejects);
}

void ImportOptionsForm::keep() const
{
    const ImportChoice choice{copy_->isChecked(), utf8(folder_->edit().text()),
        naming_->currentIndex() == renaming, utf8(pattern_->edit().text()), projectOf(*project_),
        utf8(creator_->text()), utf8(copyright_->text()), eject_->isChecked()};
    window_.desktop().defaults().set(importChoiceKey, toJson(choice));
}

void ImportOptionsForm::addFiles()
{
    copy_ = new QCheckBox(qt(importWindow::copyIntoFolder));
    folder_ = new FolderField(qt(importWindow::copyIntoFolder));
    filesHelp_ = dimLabel({});
    layout_->addWidget(copy_);
    layout_->addWidget(folder_);
    layout_->addWidget(filesHelp_);
    connect(copy_, &QCheckBox::toggled, this, [this] { refresh(); });
}

void ImportOptionsForm::addNames()
{
    naming_ = new QComboBox;
    naming_->addItems({qt(importWindow::keepNames), qt(importWindow::rename)});
    naming_->setAccessibleName(tr("File names"));
    pattern_ = new PatternField(window_.desktop().defaults(), [this] { showNamingPresets(window_); });
    example_ = dimLabel({});
    layout_->addWidget(naming_);
    layout_->addWidget(pattern_);
    layout_->addWidget(example_);
    connect(naming_, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
    connect(&pattern_->edit(), &QLineEdit::textChanged, this, [this] { showExample(); });
}

void ImportOptionsForm::addProjects()
{
    project_ = new QComboBox;
    project_->setAccessibleName(tr("Project"));
    for (const auto text : importWindow::projects)
        project_->addItem(qt(text));
    newProject_ = new QLineEdit;
    newProject_->setPlaceholderText(tr("Name of the project"));
    newProject_->setAccessibleName(newProject_->placeholderText());
    chosenProject_ = new QComboBox;
    chosenProject_->setAccessibleName(tr("Selected project"));
    chosenProject_->setPlaceholderText(tr("Choose a project"));
    layout_->addWidget(project_);
    layout_->addWidget(newProject_);
    layout_->addWidget(chosenProject_);
    fillProjects();
    connect(project_, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
    fillingSoon_.setSingleShot(true);
    connect(&fillingSoon_, &QTimer::timeout, this, [this] { projectsChanged(); });
    projectsChanged_ = window_.desktop().store().changed.connect([this](const LibraryChange& change) {
        if (change.tree)
            projectsChanged();
    });
}

/// Lines stay while one is being chosen.
void ImportOptionsForm::projectsChanged()
{
    constexpr std::chrono::milliseconds untilItMayBeChosen(200);
    if (QApplication::activePopupWidget())
        fillingSoon_.start(untilItMayBeChosen);
    else
        fillProjects();
}

/// The project that the window shows is chosen at first, else none.
void ImportOptionsForm::fillProjects()
{
    auto& store = window_.desktop().store();
    QVariant chosen = chosenProject_->currentData();
    if (!chosen.isValid() && store.source() && store.source()->kind == LibrarySource::Kind::project)
        chosen = qlonglong(store.source()->id);
    chosenProject_->clear();
    addNodes(*chosenProject_, store.tree().projects, 0);
    chosenProject_->setCurrentIndex(chosenProject_->findData(chosen));
}

QLineEdit* ImportOptionsForm::addLine(const QString& title, const QString& hint)
{
    auto* const label = dimLabel(title);
    auto* const edit = new QLineEdit;
    edit->setPlaceholderText(hint);
    edit->setAccessibleName(title);
    label->setBuddy(edit);
    layout_->addWidget(label);
    layout_->addWidget(edit);
    return edit;
}

void ImportOptionsForm::addTexts()
{
    creator_ = addLine(qt(importWindow::creator));
    copyright_ = addLine(qt(importWindow::copyright));
    keywords_ = addLine(qt(importWindow::keywords), qt(importWindow::keywordsHint));
}

void ImportOptionsForm::setSource(const ImportSource& source)
{
    mustCopy_ = mustCopy(source);
    canEject_ = source.kind == ImportSource::Kind::volume;
    refresh();
}

void ImportOptionsForm::setExample(const Candidate* candidate, std::size_t total)
{
    exampleFacts_ = {};
    if (candidate) {
        const auto name = candidate->file.path.filename();
        exampleFacts_.name = name.stem().native();
        exampleFacts_.fileDate = candidate->file.modified ? unixTime(*candidate->file.modified) : 0;
        exampleExtension_ = name.extension().native();
    }
    exampleTotal_ = std::max<std::size_t>(1, total);
    showExample();
}

/// The title of a photo is not known before it is imported.
void ImportOptionsForm::showExample()
{
    const bool shown
        = naming_->currentIndex() == renaming && naming_->isEnabled() && !exampleFacts_.name.empty();
    example_->setVisible(shown);
    if (shown)
        example_->setText(qt(namingPresetEditor::example) + " "
            + qt(baseName(exampleFacts_, utf8(pattern_->edit().text()), {1, exampleTotal_})
                + exampleExtension_));
}

void ImportOptionsForm::refresh()
{
    const bool copies = copy_->isChecked() || mustCopy_;
    copy_->setEnabled(!mustCopy_);
    folder_->setEnabled(copies);
    filesHelp_->setText(qt(mustCopy_ ? importWindow::cardsAreCopied : importWindow::filesStay));
    filesHelp_->setVisible(mustCopy_ || !copies);
    naming_->setEnabled(copies);
    pattern_->setVisible(naming_->currentIndex() == renaming);
    pattern_->setEnabled(copies);
    newProject_->setVisible(projectOf(*project_) == Project::made);
    chosenProject_->setVisible(projectOf(*project_) == Project::chosen);
    eject_->setEnabled(canEject_);
    showExample();
}

Duplicates ImportOptionsForm::duplicates() const
{
    return leaveOutDuplicates_->isChecked() ? Duplicates::leaveOut : Duplicates::take;
}

ImportOptions ImportOptionsForm::options() const
{
    using Files = ImportOptions::Files;
    const auto project = projectOf(*project_);
    const auto newProject = newProject_->text().trimmed();
    if (project == Project::made && newProject.isEmpty())
        throw std::runtime_error("Name the project that the photos go into.");
    if (project == Project::chosen && !chosenProject_->currentData().isValid())
        throw std::runtime_error("Choose the project that the photos go into.");
    const bool renames = naming_->currentIndex() == renaming;
    return {.files = copy_->isChecked() ? Files::copy : Files::reference,
        .destination = pathOf(folder_->edit().text()),
        .pattern = renames ? utf8(pattern_->edit().text()) : std::string(importWindow::defaultPattern),
        .project = project,
        .newProject = utf8(newProject),
        .chosenProject = chosenProject_->currentData().toLongLong(),
        .creator = utf8(creator_->text()),
        .copyright = utf8(copyright_->text()),
        .keywords = utf8(keywords_->text()),
        .eject = eject_->isChecked() && canEject_};
}

} // namespace korvo
