#include "app/desktop/Labels.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"
#include "imports/Naming.h"
#include "imports/NamingPreset.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>

namespace korvo {

namespace {

/// Edits the presets for file names. Each change is kept at once.
class NamingSheet : public QDialog {
public:
    explicit NamingSheet(MainWindow& window);

private:
    QLayout* makeList();
    QLayout* makeFields();
    QLayout* makeTokens();
    QWidget* makeButtons();
    QToolButton* addButton(QLayout& row, const char* symbol, const QString& what, void (NamingSheet::*act)());
    void fill(int row);
    void showPreset();
    void showExample();
    void edit();
    void addPreset();
    void removePreset();
    void restore();
    void replace(std::vector<NamingPreset> presets, int row);
    void undo();
    void forgetRemoved();
    void save();
    NamingPreset* current();

    Desktop& desktop_;
    std::vector<NamingPreset> presets_;
    QListWidget* list_ = new QListWidget;
    QLineEdit* name_ = new QLineEdit;
    QLineEdit* pattern_ = new QLineEdit;
    QLabel* example_ = plainLabel();
    QToolButton* remove_ = nullptr;
    QPushButton* undo_ = nullptr;
    std::vector<std::vector<NamingPreset>> before_; // presets were taken away, until others are edited
};

NamingSheet::NamingSheet(MainWindow& window)
    : QDialog(&window), desktop_(window.desktop()), presets_(NamingPreset::load(desktop_.defaults()))
{
    setWindowTitle(qt(namingPresetEditor::title));
    auto* const columns = new QHBoxLayout;
    columns->addLayout(makeList(), 2);
    columns->addSpacing(12);
    columns->addLayout(makeFields(), 3);
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    layout->addWidget(makeButtons());
    resize(720, 400);
    fill(0);
    list_->setFocus();
}

QLayout* NamingSheet::makeList()
{
    list_->setAccessibleName(qt(namingPresetEditor::title));
    connect(list_, &QListWidget::currentRowChanged, this, [this] { showPreset(); });
    auto* const row = new QHBoxLayout;
    addButton(*row, "+", tr("Add a preset"), &NamingSheet::addPreset);
    remove_ = addButton(*row, "−", tr("Delete the selected preset"), &NamingSheet::removePreset);
    row->addStretch(1);
    auto* const column = new QVBoxLayout;
    column->addWidget(list_, 1);
    column->addLayout(row);
    return column;
}

QToolButton* NamingSheet::addButton(
    QLayout& row, const char* symbol, const QString& what, void (NamingSheet::*act)())
{
    auto* const button = new QToolButton;
    button->setText(QString::fromUtf8(symbol));
    button->setToolTip(what);
    button->setAccessibleName(what);
    connect(button, &QToolButton::clicked, this, act);
    row.addWidget(button);
    return button;
}

QLayout* NamingSheet::makeFields()
{
    auto* const form = new QFormLayout;
    form->addRow(tr("Name"), name_);
    form->addRow(qt(namingPresetEditor::pattern), pattern_);
    form->addRow(QString(), makeTokens());
    example_->setWordWrap(true);
    form->addRow(QString(), example_);
    form->addRow(QString(), dimLabel(qt(namingPresetEditor::help)));
    for (auto* const field : {name_, pattern_}) {
        connect(field, &QLineEdit::textEdited, this, [this] { edit(); });
        connect(field, &QLineEdit::editingFinished, this, [this] { save(); });
    }
    connect(this, &QDialog::finished, this, [this] { save(); });
    return form;
}

QLayout* NamingSheet::makeTokens()
{
    auto* const row = new QHBoxLayout;
    for (const auto text : namingPresetEditor::tokens) {
        const auto token = qt(text);
        auto* const button = new QToolButton;
        button->setText(token);
        button->setFocusPolicy(Qt::NoFocus); // the pattern keeps its cursor
        connect(button, &QToolButton::clicked, this, [this, token] {
            pattern_->insert(token);
            pattern_->setFocus();
            edit();
        });
        row->addWidget(button);
    }
    row->addStretch(1);
    return row;
}

QWidget* NamingSheet::makeButtons()
{
    auto* const buttons = new QDialogButtonBox;
    auto* const restore
        = buttons->addButton(qt(namingPresetEditor::restoreDefaults), QDialogButtonBox::ResetRole);
    auto* const done = buttons->addButton(qt(namingPresetEditor::done), QDialogButtonBox::AcceptRole);
    undo_ = buttons->addButton(tr("Undo"), QDialogButtonBox::ResetRole);
    undo_->hide();
    undo_->setObjectName("undo");
    undo_->setToolTip(tr("Brings back the presets that were just deleted or replaced"));
    undo_->setAutoDefault(false);
    connect(undo_, &QPushButton::clicked, this, [this] { undo(); });
    restore->setAutoDefault(false);
    done->setAutoDefault(false);
    connect(restore, &QPushButton::clicked, this, [this] { this->restore(); });
    connect(done, &QPushButton::clicked, this, &QDialog::accept);
    return buttons;
}

void NamingSheet::fill(int row)
{
    list_->clear();
    for (const auto& preset : presets_)
        list_->addItem(qt(preset.name));
    list_->setCurrentRow(std::min(row, list_->count() - 1));
    showPreset();
}

NamingPreset* NamingSheet::current()
{
    const auto row = static_cast<std::size_t>(list_->currentRow());
    return row < presets_.size() ? &presets_[row] : nullptr;
}

void NamingSheet::showPreset()
{
    const auto* const preset = current();
    name_->setText(preset ? qt(preset->name) : QString());
    pattern_->setText(preset ? qt(preset->pattern) : QString());
    for (QWidget* const widget : std::initializer_list<QWidget*>{name_, pattern_, remove_})
        widget->setEnabled(preset);
    showExample();
}

/// The name that the first of the selected photos would get, else the first that is shown.
void NamingSheet::showExample()
{
    const auto photos = desktop_.browser().targets();
    const auto& list = desktop_.store().list();
    const PhotoItem* const item = !photos.empty() ? list.find(photos.front())
        : !list.shown().empty()                   ? &list.items()[list.shown().front()]
                                                  : nullptr;
    if (!item || !current()) {
        example_->clear();
        return;
    }
    const auto total = std::max<std::size_t>(1, photos.size());
    example_->setText(qt(namingPresetEditor::example) + " "
        + qt(baseName(listedFacts(*item), current()->pattern, {1, total})
            + item->path().extension().native()));
}

void NamingSheet::edit()
{
    auto* const preset = current();
    if (!preset)
        return;
    forgetRemoved();
    preset->name = utf8(name_->text());
    preset->pattern = utf8(pattern_->text());
    list_->currentItem()->setText(name_->text());
    showExample();
}

void NamingSheet::addPreset()
{
    forgetRemoved();
    presets_.push_back(NamingPreset::make(std::string(namingPresetEditor::newPreset), std::string("{name}")));
    fill(static_cast<int>(presets_.size()) - 1);
    name_->setFocus();
    name_->selectAll();
    save();
}

void NamingSheet::removePreset()
{
    const int row = list_->currentRow();
    auto left = presets_;
    left.erase(left.begin() + row);
    replace(std::move(left), row);
}

void NamingSheet::restore()
{
    replace(NamingPreset::defaults(), 0);
}

void NamingSheet::replace(std::vector<NamingPreset> presets, int row)
{
    before_.push_back(std::exchange(presets_, std::move(presets)));
    undo_->show();
    fill(row);
    save();
}

void NamingSheet::undo()
{
    presets_ = std::move(before_.back());
    before_.pop_back();
    undo_->setVisible(!before_.empty());
    fill(0);
    save();
}

/// To go back to them would take away what was typed since.
void NamingSheet::forgetRemoved()
{
    before_.clear();
    undo_->hide();
}

void NamingSheet::save()
{
    attemptIn(*this, [this] { NamingPreset::save(presets_, desktop_.defaults()); });
}

} // namespace

QWidget* showNamingPresets(MainWindow& window)
{
    return showOne<NamingSheet>(window);
}

} // namespace korvo
