#include "app/desktop/viewer/PhotoFeed.h"

#include "app/desktop/Texts.h"
#include "edits/AdjustmentCopy.h"

#include <algorithm>

namespace korvo {

QImage imageOf(const LivePicture& picture)
{
    const auto* const owner = new std::shared_ptr<const Bitmap>(picture.image);
    const auto release
        = [](void* bitmap) { delete static_cast<const std::shared_ptr<const Bitmap>*>(bitmap); };
    return {(*owner)->bytes.data(), (*owner)->width, (*owner)->height,
        static_cast<qsizetype>((*owner)->rowBytes()),
        picture.isOpaque ? QImage::Format_RGBX8888 : QImage::Format_RGBA8888_Premultiplied, release,
        const_cast<std::shared_ptr<const Bitmap>*>(owner)};
}

PhotoFeed::PhotoFeed(Desktop& desktop, Neighbours neighbours)
    : desktop_(desktop), viewer_(desktop.decoded().newViewer()), neighbours_(neighbours),
      arrived_(desktop.decoded().arrived.connect([this](const DecodeWish& wish) { arrived(wish); })),
      storeChanged_(
          desktop.store().changed.connect([this](const LibraryChange& change) { storeChanged(change); })),
      draftChanged_(desktop.draft().changed.connect([this] { editsChanged(); }))
{ }

PhotoFeed::~PhotoFeed()
{
    desktop_.decoded().wish(viewer_, {});
}

const PhotoItem* PhotoFeed::item() const
{
    if (file_)
        return &*file_;
    return photo_ ? desktop_.store().list().find(*photo_) : nullptr;
}

bool PhotoFeed::isLoading() const
{
    return item() && fault_.isEmpty() && shown_ != Shown::whole;
}

void PhotoFeed::setPhoto(std::optional<PhotoID> photo)
{
    if (photo == photo_ && !file_)
        return;
    photo_ = photo;
    file_.reset();
    if (const auto position = photo ? desktop_.store().list().shownPosition(*photo) : std::nullopt) {
        direction_ = *position < position_ ? -1 : 1;
        position_ = *position;
    }
    begin();
}

void PhotoFeed::setFile(const std::filesystem::path& file)
{
    if (file_ && file_->path() == file)
        return;
    photo_.reset();
    file_.emplace();
    file_->folder = file.parent_path().native();
    file_->filename = file.filename().native();
    begin();
}

void PhotoFeed::begin()
{
    clear();
    path_ = item() ? item()->path() : std::filesystem::path();
    wish();
    if (shown_ == Shown::nothing && isAtHand()) // it follows at once; till then no empty view flickers up
        return;
    screen_ = {};
    changed.emit();
}

bool PhotoFeed::isAtHand() const
{
    const auto* const photo = item();
    const auto wishes = photo ? picturesFor(*photo, size_) : std::vector<DecodeWish>();
    return std::ranges::any_of(wishes, [this](const DecodeWish& wish) {
        const auto decoded = desktop_.decoded().find(wish);
        return decoded && decoded->isThere();
    });
}

void PhotoFeed::setSize(int size)
{
    if (size == size_)
        return;
    size_ = size;
    wish(); // what is there is stretched until the new one is
}

void PhotoFeed::setDetail(ViewDetail detail)
{
    if (detail == detail_)
        return;
    detail_ = detail;
    dropFull();
    wish();
}

void PhotoFeed::setLook(Look look)
{
    if (look == look_)
        return;
    look_ = look;
    editsChanged();
}

void PhotoFeed::clear()
{
    dropFull();
    shown_ = Shown::nothing;
    fault_.clear();
    missing_.clear();
    screenSlot_ = LiveRenders::slot();
    placeholder_.reset();
}

void PhotoFeed::wish()
{
    const auto* const photo = item();
    if (!photo || size_ <= 0)
        return desktop_.decoded().wish(viewer_, {});
    auto wishes = neighbours_ == Neighbours::ahead
        ? viewerWishes(desktop_.store().list(), {position_, direction_, size_, detail_})
        : picturesFor(*photo, size_, detail_);
    desktop_.decoded().wish(viewer_, std::move(wishes));
    renderScreen();
    renderFull();
    if (shown_ == Shown::nothing && !placeholder_ && !isAtHand())
        askForPlaceholder();
}

void PhotoFeed::askForPlaceholder()
{
    const auto* const photo = item();
    if (!photo)
        return;
    placeholder_
        = desktop_.pictures().load(pictureOf(*photo, Previews::thumbnailSize, PicturePriority::shown),
            [this](const QImage& image, const QString& fault) {
                if (shown_ > Shown::placeholder || image.isNull())
                    return;
                missing_ = fault;
                screen_ = {image, {}, {}};
                shown_ = Shown::placeholder;
                changed.emit();
            });
}

void PhotoFeed::arrived(const DecodeWish& wish)
{
    const auto* const photo = item();
    if (!photo || wish.file != photo->path())
        return;
    if (wish.size == 0)
        renderFull();
    else
        renderScreen();
}

PhotoEdits PhotoFeed::edits() const
{
    auto edits = desktop_.draft().editsOf(*item());
    return look_ == Look::after ? edits : withoutAdjustments(edits);
}

void PhotoFeed::storeChanged(const LibraryChange& change)
{
    if (!photo_)
        return;
    if (!item())
        return setPhoto(std::nullopt);
    if (change.list)
        position_ = desktop_.store().list().shownPosition(*photo_).value_or(position_);
    if (item()->path() != path_) // it was found where it was moved to
        return begin();
    if (std::ranges::find(change.photos, *photo_) != change.photos.end() || change.list)
        editsChanged();
}

/// Draws again when the edits are others; a crop may need more pixels.
void PhotoFeed::editsChanged()
{
    const bool isComplete = detail_ == ViewDetail::screen || !full_.image.isNull();
    if (!item() || (edits() == drawn_ && isComplete))
        return;
    dropFull();
    if (desktop_.draft().isMoved()) // all pixels follow once the slider is let go
        return renderScreen();
    if (!fault_.isEmpty()) { // of a missing photo, the stand-in is all there is
        drawn_ = edits();
        askForPlaceholder();
    }
    wish();
}

void PhotoFeed::dropFull()
{
    full_ = {};
    fullSlot_ = LiveRenders::slot(); // what is under way has the old edits
}

void PhotoFeed::renderScreen()
{
    const auto* const photo = item();
    if (!photo || size_ <= 0)
        return;
    const auto wishes = picturesFor(*photo, size_);
    for (auto wish = wishes.rbegin(); wish != wishes.rend(); ++wish) {
        const auto decoded = desktop_.decoded().find(*wish);
        if (!decoded)
            continue;
        if (!decoded->isThere()) {
            fault_ = qt(decoded->fault);
            changed.emit();
            continue;
        }
        const bool isWhole = wish->source == PictureSource::whole;
        drawn_ = edits();
        return render(screenSlot_, decoded, size_, screen_, isWhole ? Shown::whole : Shown::quick);
    }
}

void PhotoFeed::renderFull()
{
    const auto* const photo = item();
    if (!photo || detail_ != ViewDetail::full || !full_.image.isNull() || desktop_.draft().isMoved())
        return;
    const auto decoded = desktop_.decoded().find({photo->path(), 0, PictureSource::whole});
    if (decoded && decoded->isThere())
        render(fullSlot_, decoded, 0, full_, Shown::whole);
}

void PhotoFeed::render(const LiveRenders::Slot& slot, std::shared_ptr<const DecodedPhoto> photo, int size,
    Picture& target, Shown shown)
{
    if (shown == Shown::whole)
        fault_ = qt(photo->image.note);
    desktop_.renders().render(
        slot, {std::move(photo), edits(), size}, [this, &target, shown](const LivePicture& picture) {
            if (!picture.image)
                return;
            missing_.clear(); // it is back
            target = {imageOf(picture), {picture.fullWidth, picture.fullHeight}, picture.histogram};
            shown_ = std::max(shown_, shown);
            changed.emit();
        });
}

} // namespace korvo
