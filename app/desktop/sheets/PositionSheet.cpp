#include "app/desktop/Ask.h"
#include "app/desktop/Labels.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"
#include "catalog/FileTypes.h"
#include "catalog/NearPlace.h"
#include "catalog/store/SmartAlbumEditor.h"
#include "metadata/DateAndPlaceSteps.h"
#include "metadata/InfoTexts.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace korvo {

namespace {

/// The position that a text names, as the editor of smart albums reads it.
std::optional<Coordinate> positionIn(const std::string& text)
{
    const auto place = parseNearPlace(nearValue({"0", text}));
    return place ? std::optional(Coordinate{place->latitude, place->longitude}) : std::nullopt;
}

bool isFilm(const LibraryStore& store, PhotoID photo)
{
    const auto* const item = store.list().find(photo);
    return item && isVideo(item->filename.view());
}

/// Asks where photos were taken.
class PositionSheet : public QDialog {
public:
    PositionSheet(MainWindow& window, std::vector<PhotoID> photos);

private:
    void refresh();
    void accept() override;

    Desktop& desktop_;
    std::vector<PhotoID> photos_;
    QLineEdit* position_ = new QLineEdit;
    QLabel* found_ = plainLabel();
    QPushButton* set_ = nullptr;
};

PositionSheet::PositionSheet(MainWindow& window, std::vector<PhotoID> photos)
    : QDialog(&window), desktop_(window.desktop()), photos_(std::move(photos))
{
    setWindowTitle("Set Position");
    position_->setAccessibleName("Latitude and longitude");
    position_->setPlaceholderText("48.137, 11.575");
    position_->setMinimumWidth(360);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    set_
        = buttons->addButton("Set for " + qt(counted(photos_.size(), "Photo")), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(position_, &QLineEdit::textChanged, this, [this] { refresh(); });
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(dimLabel("Latitude and longitude, in the library and in the files"));
    if (std::ranges::any_of(photos_, [&](PhotoID photo) { return isFilm(desktop_.store(), photo); }))
        layout->addWidget(
            dimLabel("Films lose the name and altitude of their old place, which undo does not bring back"));
    layout->addWidget(position_);
    layout->addWidget(found_);
    layout->addStretch(1);
    layout->addWidget(buttons);
    if (const auto* const item = desktop_.store().list().find(photos_.front());
        item && item->latitude && item->longitude) {
        position_->setText(qt(positionText(*item)));
        position_->selectAll();
    }
    refresh();
}

void PositionSheet::refresh()
{
    const auto position = positionIn(utf8(position_->text()));
    PhotoItem there;
    if (position) {
        there.latitude = position->latitude;
        there.longitude = position->longitude;
    }
    const bool isBegun = !position_->text().trimmed().isEmpty();
    found_->setText(position ? qt(positionText(there)) : isBegun ? "This is no position." : "");
    set_->setEnabled(position.has_value());
}

void PositionSheet::accept()
{
    attemptIn(*this, [this] {
        setPosition(
            desktop_.session().writeBack(), desktop_.store(), photos_, positionIn(utf8(position_->text())));
        QDialog::accept();
    });
}

} // namespace

QWidget* showSetPosition(MainWindow& window)
{
    auto* const sheet = new PositionSheet(window, window.desktop().browser().targets());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
    return sheet;
}

void clearPosition(MainWindow& window)
{
    auto& desktop = window.desktop();
    const auto photos = desktop.browser().targets(); // those of now: the library goes on while one reads
    const auto title = photos.size() == 1 ? std::string("Clear the position of this photo?")
                                          : "Clear the positions of " + counted(photos.size(), "photo") + "?";
    if (ask(window, qt(title),
            "They leave the files, too, but for Aperture's originals, with altitude, direction and time, and "
            "in films the name of the place. Undo brings back latitude and longitude alone.",
            "Clear"))
        setPosition(desktop.session().writeBack(), desktop.store(), photos, std::nullopt);
}

} // namespace korvo
