#include "app/desktop/sheets/RuleRow.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "base/Text.h"
#include "catalog/RuleTest.h"
#include "catalog/store/SmartAlbumEditor.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace korvo {

namespace {

QLineEdit* lineEdit(const std::string& text, std::string_view hint, std::string_view name)
{
    auto* const edit = new QLineEdit(qt(text));
    edit->setPlaceholderText(qt(hint));
    edit->setAccessibleName(qt(name));
    return edit;
}

} // namespace

RuleRow::RuleRow(SmartAlbumRule rule, Handlers handlers, QWidget* parent)
    : QWidget(parent), rule_(std::move(rule)), handlers_(std::move(handlers)), field_(new QComboBox),
      op_(new QComboBox), controls_(new QHBoxLayout), fault_(warning(plainLabel()))
{
    field_->setAccessibleName(qt(smartAlbumEditor::field));
    op_->setAccessibleName(qt(smartAlbumEditor::op));
    for (const auto& field : smartAlbumFields())
        field_->addItem(qt(field.title));
    field_->setCurrentIndex(static_cast<int>(rule_.field));
    auto* const remove = new QToolButton;
    remove->setText(QStringLiteral("−"));
    remove->setToolTip(qt(smartAlbumEditor::removeRule));
    remove->setAccessibleName(qt(smartAlbumEditor::removeRule));
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    controls_->addWidget(field_);
    controls_->addWidget(op_);
    controls_->addWidget(remove);
    layout->addLayout(controls_);
    layout->addWidget(fault_);
    fillOperators();
    fillValue();
    showFault();
    connect(field_, &QComboBox::activated, this, [this] { chooseField(); });
    connect(op_, &QComboBox::activated, this, [this] { chooseOperator(); });
    connect(remove, &QToolButton::clicked, this, [this] { handlers_.removed(this); });
}

void RuleRow::focusValue()
{
    value_->setFocus();
}

void RuleRow::chooseField()
{
    rule_ = withField(rule_, smartAlbumFields()[static_cast<std::size_t>(field_->currentIndex())].field);
    fillOperators();
    fillValue();
    showFault();
    handlers_.changed();
}

void RuleRow::chooseOperator()
{
    rule_.op = static_cast<SmartAlbumRule::Op>(op_->currentData().toInt());
    showFault();
    handlers_.changed();
}

/// An operator that the field does not take is shown all the same, with the fault.
void RuleRow::fillOperators()
{
    op_->clear();
    for (const auto op : fieldOf(rule_).ops)
        op_->addItem(qt(label(op)), static_cast<int>(op));
    if (op_->findData(static_cast<int>(rule_.op)) < 0)
        op_->addItem(qt(label(rule_.op)), static_cast<int>(rule_.op));
    op_->setCurrentIndex(op_->findData(static_cast<int>(rule_.op)));
}

void RuleRow::fillValue()
{
    delete value_;
    const auto kind = fieldOf(rule_).value;
    if (const auto choices = valueChoices(kind); !choices.empty())
        addChoices(choices);
    else if (kind == RuleValue::place)
        addPlace();
    else
        addText();
    controls_->insertWidget(2, value_, 1);
}

/// A value from elsewhere that is none of the choices stays until another is chosen.
void RuleRow::addChoices(const std::vector<std::string>& choices)
{
    auto* const box = new QComboBox;
    box->setAccessibleName(qt(smartAlbumEditor::value));
    int current = -1;
    for (const auto& choice : choices) {
        if (compareNoCase(choice, trimmed(rule_.value)) == 0)
            current = box->count();
        box->addItem(qt(choice));
    }
    if (current < 0) {
        box->insertItem(0, qt(rule_.value));
        current = 0;
    }
    box->setCurrentIndex(current);
    connect(box, &QComboBox::textActivated, this, [this](const QString& text) { setValue(utf8(text)); });
    value_ = box;
}

void RuleRow::addText()
{
    auto* const edit = lineEdit(rule_.value, fieldOf(rule_).hint, smartAlbumEditor::value);
    connect(edit, &QLineEdit::textChanged, this, [this](const QString& text) { setValue(utf8(text)); });
    value_ = edit;
}

void RuleRow::addPlace()
{
    const auto [radius, placeText] = nearTexts(rule_.value);
    value_ = new QWidget;
    auto* const layout = new QHBoxLayout(value_);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const kilometres = lineEdit(radius, fieldOf(rule_).hint, "Radius");
    auto* const place = lineEdit(placeText, smartAlbumEditor::placeHint, "Place");
    auto* const found = plainLabel();
    const auto show = [found](const QString& text) {
        const bool is = isPlace(utf8(text));
        const auto line = is ? smartAlbumEditor::placeFound : smartAlbumEditor::placeNotFound;
        found->setText(text.trimmed().isEmpty() ? QString() : (is ? "✓ " : "⚠ ") + qt(line));
    };
    const auto typed = [this, kilometres, place, show] {
        show(place->text());
        setValue(nearValue({utf8(kilometres->text()), utf8(place->text())}));
    };
    for (auto* const edit : {kilometres, place})
        connect(edit, &QLineEdit::textChanged, this, typed);
    layout->addWidget(kilometres, 1);
    layout->addWidget(plainLabel(qt(smartAlbumEditor::kilometresOf)));
    layout->addWidget(place, 2);
    layout->addWidget(found);
    value_->setFocusProxy(kilometres);
    show(place->text());
}

void RuleRow::setValue(std::string value)
{
    rule_.value = std::move(value);
    showFault();
    handlers_.changed();
}

/// A value that is still empty is shown by its hint alone.
void RuleRow::showFault()
{
    const auto what = fault(rule_);
    fault_->setText(what ? qt(*what) : QString());
    const bool isBegun = !trimmed(rule_.value).empty() && rule_.value != nearValue({});
    fault_->setVisible(what && isBegun);
}

} // namespace korvo
