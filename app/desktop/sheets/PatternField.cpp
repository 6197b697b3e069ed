#include "app/desktop/sheets/PatternField.h"

#include "app/desktop/Texts.h"
#include "imports/NamingPreset.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QToolButton>

namespace korvo {

PatternField::PatternField(const Defaults& defaults, std::function<void()> editPresets)
    : defaults_(defaults), editPresets_(std::move(editPresets)), edit_(new QLineEdit),
      presets_(new QMenu(this))
{
    edit_->setAccessibleName(qt(namingPresetEditor::pattern));
    edit_->setToolTip(qt(namingPresetEditor::help));
    auto* const button = new QToolButton;
    button->setText(tr("Presets"));
    button->setPopupMode(QToolButton::InstantPopup);
    button->setMenu(presets_);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(edit_, 1);
    layout->addWidget(button);
    setFocusPolicy(Qt::StrongFocus); // or a label's key would pass it over
    setFocusProxy(edit_);
    connect(presets_, &QMenu::aboutToShow, this, [this] { fill(); });
}

void PatternField::fill()
{
    presets_->clear();
    for (const auto& preset : NamingPreset::load(defaults_))
        presets_->addAction(qt(preset.name).replace('&', "&&") + "\t" + qt(preset.pattern), this,
            [this, pattern = qt(preset.pattern)] { edit_->setText(pattern); });
    if (!editPresets_)
        return;
    presets_->addSeparator();
    presets_->addAction(tr("Edit Presets…"), this, editPresets_);
}

} // namespace korvo
