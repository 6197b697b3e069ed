#include "app/desktop/Labels.h"
#include "app/desktop/sheets/RuleRow.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"
#include "base/JsonError.h"
#include "base/Text.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/MatchCounter.h"
#include "catalog/store/SmartAlbumEditor.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace korvo {

namespace {

/// Makes a smart album, or changes one.
class SmartAlbumSheet : public QDialog {
public:
    SmartAlbumSheet(MainWindow& window, std::optional<std::int64_t> id);

private:
    void readRules(const SmartAlbumRow& album);
    void makeRules();
    QLayout* makeMatchLine();
    void makeButtons();
    RuleRow* addRow(SmartAlbumRule rule);
    void removeRow(RuleRow* row);
    SmartAlbumRules rules() const;
    void recount();
    void showCount();
    void save();

    Desktop& desktop_;
    std::optional<std::int64_t> id_;
    bool readable_ = true; // else the stored rules stay
    SmartAlbumRules stored_{{newRule()}, true};
    MatchCounter counter_;
    QVBoxLayout* layout_;
    QLineEdit* name_;
    QComboBox* match_;
    QScrollArea* area_;
    QVBoxLayout* rowLayout_;
    std::vector<RuleRow*> rows_;
    QLabel* count_;
    QPushButton* save_ = nullptr;
    Connection counted_;
};

SmartAlbumSheet::SmartAlbumSheet(MainWindow& window, std::optional<std::int64_t> id)
    : QDialog(&window), desktop_(window.desktop()), id_(id),
      counter_(desktop_.mainThread(), desktop_.store()), layout_(new QVBoxLayout(this)), name_(new QLineEdit),
      match_(new QComboBox), area_(new QScrollArea), count_(plainLabel())
{
    setWindowTitle(qt(id ? smartAlbumEditor::editTitle : smartAlbumEditor::newTitle));
    setWindowModality(Qt::WindowModal);
    auto* const form = new QFormLayout;
    form->addRow(qt(smartAlbumEditor::name), name_);
    layout_->addLayout(form);
    layout_->addSpacing(6);
    if (id)
        readRules(desktop_.store().catalog().smartAlbum(*id));
    if (readable_)
        makeRules();
    makeButtons();
    resize(680, 420);
    name_->setFocus();
}

void SmartAlbumSheet::readRules(const SmartAlbumRow& album)
{
    name_->setText(qt(album.name));
    try {
        stored_ = smartAlbumRules(album.rules);
    } catch (const JsonError& error) {
        readable_ = false;
        auto* const reason = plainLabel(qt(unreadableRulesText(error.what())));
        reason->setWordWrap(true);
        auto* const stored = dimLabel(qt(album.rules));
        stored->setTextInteractionFlags(Qt::TextSelectableByMouse);
        layout_->addWidget(reason);
        layout_->addWidget(stored);
        layout_->addStretch(1);
    }
}

void SmartAlbumSheet::makeRules()
{
    layout_->addLayout(makeMatchLine());
    auto* const rows = new QWidget;
    rowLayout_ = new QVBoxLayout(rows);
    rowLayout_->setContentsMargins(0, 4, 6, 4);
    rowLayout_->addStretch(1);
    area_->setWidget(rows);
    area_->setWidgetResizable(true);
    area_->setFrameShape(QFrame::NoFrame);
    area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area_->setFocusPolicy(Qt::NoFocus);
    layout_->addWidget(area_, 1);
    for (const auto& rule : stored_.rules)
        addRow(rule);
    auto* const add = new QToolButton;
    add->setText(QStringLiteral("+"));
    add->setToolTip(qt(smartAlbumEditor::addRule));
    add->setAccessibleName(qt(smartAlbumEditor::addRule));
    connect(add, &QToolButton::clicked, this, [this] {
        addRow(newRule())->focusValue();
        recount();
    });
    auto* const line = new QHBoxLayout;
    line->addWidget(add);
    line->addWidget(count_, 1);
    layout_->addLayout(line);
    counted_ = counter_.changed.connect([this] { showCount(); });
    recount();
}

QLayout* SmartAlbumSheet::makeMatchLine()
{
    match_->addItem(qt(smartAlbumEditor::all));
    match_->addItem(qt(smartAlbumEditor::any));
    match_->setCurrentIndex(stored_.matchAll ? 0 : 1);
    match_->setAccessibleName(qt(smartAlbumEditor::match));
    connect(match_, &QComboBox::activated, this, [this] { recount(); });
    auto* const line = new QHBoxLayout;
    line->addWidget(plainLabel(qt(smartAlbumEditor::match)));
    line->addWidget(match_);
    line->addWidget(plainLabel(qt(smartAlbumEditor::ofTheRules)), 1);
    return line;
}

void SmartAlbumSheet::makeButtons()
{
    auto* const buttons = new QDialogButtonBox;
    buttons->addButton(qt(smartAlbumEditor::cancel), QDialogButtonBox::RejectRole);
    save_ = buttons->addButton(
        qt(id_ ? smartAlbumEditor::save : smartAlbumEditor::create), QDialogButtonBox::AcceptRole);
    save_->setDefault(true);
    const auto showPossible = [this] { save_->setEnabled(!isBlank(utf8(name_->text()))); };
    connect(name_, &QLineEdit::textChanged, this, showPossible);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { attemptIn(*this, [this] { save(); }); });
    showPossible();
    layout_->addWidget(buttons);
}

RuleRow* SmartAlbumSheet::addRow(SmartAlbumRule rule)
{
    auto* const row = new RuleRow(std::move(rule),
        {[this] { recount(); }, [this](RuleRow* gone) { removeRow(gone); }}, area_->widget());
    rowLayout_->insertWidget(rowLayout_->count() - 1, row);
    rows_.push_back(row);
    QTimer::singleShot(0, row, [this, row] { area_->ensureWidgetVisible(row); });
    return row;
}

void SmartAlbumSheet::removeRow(RuleRow* row)
{
    std::erase(rows_, row);
    row->hide();
    row->deleteLater(); // its own button is still being clicked
    recount();
}

SmartAlbumRules SmartAlbumSheet::rules() const
{
    SmartAlbumRules rules{{}, match_->currentIndex() == 0};
    for (const auto* const row : rows_)
        rules.rules.push_back(row->rule());
    return rules;
}

void SmartAlbumSheet::recount()
{
    counter_.count(rules());
}

void SmartAlbumSheet::showCount()
{
    if (!counter_.fault().empty())
        count_->setText(qt(counter_.fault()));
    else
        count_->setText(qt(counter_.result() ? matchCountText(*counter_.result())
                                             : std::string(smartAlbumEditor::counting)));
}

void SmartAlbumSheet::save()
{
    auto& store = desktop_.store();
    const auto name = utf8(name_->text());
    if (id_)
        changeSmartAlbum(store, *id_, name, readable_ ? std::optional(rules()) : std::nullopt);
    else
        store.chooseSource(
            LibrarySource{LibrarySource::Kind::smartAlbum, createSmartAlbum(store, name, rules()), {}});
    accept();
}

} // namespace

QWidget* showSmartAlbumSheet(MainWindow& window, std::optional<std::int64_t> id)
{
    return showOne<SmartAlbumSheet>(window, id);
}

} // namespace korvo
