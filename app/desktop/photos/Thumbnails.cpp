#include "app/desktop/photos/Thumbnails.h"

#include <unordered_set>

namespace korvo {

Thumbnails::Picture Thumbnails::find(PhotoID id) const
{
    const Kept* const kept = kept_.object(id);
    return kept ? Picture{kept->pixmap, kept->state} : Picture();
}

void Thumbnails::want(std::span<const PhotoItem* const> shown, std::span<const PhotoItem* const> soon,
    int pixels, double devicePixelRatio)
{
    std::unordered_set<PhotoID> wanted;
    for (const auto list : {shown, soon})
        for (const PhotoItem* const item : list)
            wanted.insert(item->id);
    std::erase_if(loading_, [&](const auto& entry) { return !wanted.contains(entry.first); });
    for (const PhotoItem* const item : shown)
        load(*item, PicturePriority::shown, pixels, devicePixelRatio);
    for (const PhotoItem* const item : soon)
        load(*item, PicturePriority::prefetch, pixels, devicePixelRatio);
}

void Thumbnails::load(const PhotoItem& item, PicturePriority priority, int pixels, double ratio)
{
    if (const Kept* const kept = kept_.object(item.id); kept && kept->shows(item, pixels) && !kept->isDue())
        return;
    if (const auto running = loading_.find(item.id); running != loading_.end()
        && running->second.result.shows(item, pixels) && running->second.priority <= priority)
        return;
    auto done = [this, id = item.id, ratio](QImage image, const QString& fault) {
        const auto loaded = loading_.extract(id);
        auto kept = std::make_unique<Kept>(loaded.mapped().result);
        kept->pixmap = QPixmap::fromImage(std::move(image));
        kept->pixmap.setDevicePixelRatio(ratio);
        kept->state = fault.isEmpty() ? PictureState::fine : PictureState::broken;
        const auto bytes = qsizetype{4} * kept->pixmap.width() * kept->pixmap.height();
        kept_.insert(id, kept.release(), 1 + bytes / 1024);
        arrived_(id);
    };
    auto handle = desktop_.pictures().load(pictureOf(item, pixels, priority), std::move(done));
    loading_.insert_or_assign(
        item.id, Loading{priority, {{}, {}, item.filename, item.editsJSON, pixels}, std::move(handle)});
}

} // namespace korvo
