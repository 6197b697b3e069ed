#include "app/desktop/info/VersionList.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/Versions.h"
#include "app/view/ShowVersions.h"
#include "base/Text.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace korvo {

namespace {

constexpr int idRole = Qt::UserRole;
constexpr int mostRowsInSight = 6;

PhotoID idOf(const QListWidgetItem& row)
{
    return row.data(idRole).toLongLong();
}

} // namespace

VersionList::VersionList(MainWindow& window)
    : window_(window), rows_(new QListWidget), rename_(new QPushButton("Rename…")),
      remove_(new QPushButton("Remove"))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 6);
    auto* const title = plainLabel("Versions");
    dimmed(title);
    layout->addWidget(title);
    layout->addWidget(rows_);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(rename_);
    buttons->addWidget(remove_);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    rows_->setObjectName("versions");
    rows_->setAccessibleName("Versions");
    rows_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto& desktop = window_.desktop();
    const auto open = [&desktop](QListWidgetItem* row) {
        desktop.attempt([&] {
            if (const auto said = openVersion(desktop.store(), desktop.browser(), idOf(*row)); !said.empty())
                desktop.say(said);
        });
    };
    connect(rows_, &QListWidget::itemClicked, this, open);
    connect(rows_, &QListWidget::itemActivated, this, open);
    connect(rows_, &QListWidget::currentItemChanged, this, [this] { showButtons(); });
    connect(rename_, &QPushButton::clicked, this, [this, &desktop] {
        if (const auto version = chosenVersion())
            desktop.attempt([&] { renameVersion(window_, *version); });
    });
    connect(remove_, &QPushButton::clicked, this, [this, &desktop] {
        if (const auto version = chosenVersion())
            desktop.attempt([&] { removeVersion(desktop, *version); });
    });
    clear();
}

void VersionList::clear()
{
    const QSignalBlocker quiet(rows_);
    rows_->clear();
    window_.setShown(*this, false);
}

void VersionList::setVersions(PhotoID chosen, const std::vector<PhotoItem>& versions)
{
    if (versions.empty())
        return clear();
    const QSignalBlocker quiet(rows_); // the buttons stay as they are until the rows are there again
    rows_->clear();
    addRow(*versions.front().versionOf, "Original");
    for (const auto& version : versions)
        addRow(version.id, qt(repairedUtf8(version.versionName.view())));
    follow(chosen);
    const int inSight = std::min(rows_->count(), mostRowsInSight);
    rows_->setFixedHeight(inSight * rows_->sizeHintForRow(0) + 2 * rows_->frameWidth());
    setVisible(true);
}

void VersionList::follow(PhotoID chosen)
{
    if (!holds(chosen))
        return clear();
    for (int row = 0; row < rows_->count(); ++row)
        if (idOf(*rows_->item(row)) == chosen)
            rows_->setCurrentRow(row);
    showButtons();
}

void VersionList::addRow(PhotoID id, const QString& name)
{
    auto* const row = new QListWidgetItem(name, rows_);
    row->setData(idRole, static_cast<qlonglong>(id));
}

bool VersionList::holds(PhotoID id) const
{
    for (int row = 0; row < rows_->count(); ++row)
        if (idOf(*rows_->item(row)) == id)
            return true;
    return false;
}

std::optional<PhotoID> VersionList::chosenVersion() const
{
    const bool isVersion = rows_->currentRow() > 0; // the first one is the photo itself
    return isVersion ? std::optional(idOf(*rows_->currentItem())) : std::nullopt;
}

void VersionList::showButtons()
{
    const bool isVersion = chosenVersion().has_value();
    if (!isVersion && (rename_->hasFocus() || remove_->hasFocus()))
        rows_->setFocus(); // else Qt gives it to the next field
    for (auto* const button : {rename_, remove_})
        button->setEnabled(isVersion);
}

} // namespace korvo
