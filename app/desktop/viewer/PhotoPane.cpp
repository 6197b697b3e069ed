#include "app/desktop/viewer/PhotoPane.h"

#include "app/desktop/Texts.h"
#include "app/desktop/photos/PhotoSigns.h"

#include <QVBoxLayout>

namespace korvo {

namespace {

QString percent(double scale)
{
    return QString("%1 %").arg(qRound(100 * scale));
}

} // namespace

PhotoPane::PhotoPane(MainWindow& window, PhotoFeed::Neighbours neighbours)
    : desktop_(window.desktop()), view_(new PhotoView(desktop_, neighbours)), bar_(new MarksBar(window))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(view_, 1);
    layout->addWidget(bar_);
    setFocusProxy(view_);
    feedChanged_ = view_->feed().changed.connect([this] {
        showNote();
        describe();
    });
    zoomed_ = view_->zoomed.connect([this] { showNote(); });
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange& change) {
        describe();
        if (change.list) // the photo may have another place in it
            showNote();
    });
    describe();
}

void PhotoPane::setPhoto(std::optional<PhotoID> photo)
{
    bar_->setPhoto(photo);
    view_->setPhoto(photo);
    showNote();
    describe();
}

/// In words, for those who do not see it.
void PhotoPane::describe()
{
    if (!photo() && view_->feed().item())
        return; // a file, which has its title
    const auto* const item = view_->feed().item();
    const auto picture = view_->feed().isBroken() ? PictureState::broken : PictureState::fine;
    const auto words = item ? spokenText(*item, signsOf(desktop_, *item, picture)) : QString("No photo");
    if (words != view_->accessibleName())
        view_->setAccessibleName(words);
}

void PhotoPane::setFile(const std::filesystem::path& file, const QString& title)
{
    if (file.empty())
        view_->setPhoto(std::nullopt);
    else
        view_->setFile(file);
    bar_->setTitle(title);
    showNote();
    view_->setAccessibleName(title);
}

void PhotoPane::setLook(Look look)
{
    look_ = look;
    view_->setLook(look);
    showNote();
}

void PhotoPane::showNote()
{
    const auto& list = desktop_.store().list();
    const auto shown = photo();
    const auto place = shown ? list.shownPosition(*shown) : std::nullopt;
    QStringList parts;
    if (look_ == Look::before && shown)
        parts << "Before";
    else if (view_->feed().isLoading())
        parts << "Loading…";
    if (!view_->feed().screen().full.isEmpty())
        parts << percent(view_->zoom().scale());
    if (place)
        parts << number(*place + 1) + " of " + number(list.shown().size());
    bar_->setNote(parts.join("  ·  "));
}

} // namespace korvo
