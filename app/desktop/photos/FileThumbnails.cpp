#include "app/desktop/photos/FileThumbnails.h"

#include <QPainter>

#include <cmath>

namespace korvo {

namespace {

constexpr std::size_t mostKept = 600; // several screens full
constexpr std::size_t mostWaiting = 80; // beyond, what was asked for first has left the screen

} // namespace

FileThumbnails::FileThumbnails(Pictures& pictures, int size, std::function<void()> arrived)
    : pictures_(pictures), size_(size), arrived_(std::move(arrived))
{ }

QPixmap FileThumbnails::picture(
    const std::filesystem::path& file, double devicePixelRatio, const SharedText& editsJSON)
{
    const auto [found, isNew] = entries_.try_emplace(file.native());
    auto& entry = found->second;
    if (isNew)
        order_.push_back(file.native());
    const auto pixels = static_cast<int>(std::lround(size_ * devicePixelRatio));
    const bool isAskedFor = entry.request || !entry.picture.isNull() || entry.failed;
    if (isAskedFor && pixels == entry.pixels)
        return entry.picture;
    entry.pixels = pixels;
    entry.request = pictures_.load({.file = file, .editsJSON = editsJSON, .size = pixels},
        [this, key = file.native()](const QImage& image, const QString&) {
            auto& loaded = entries_[key];
            loaded.picture = QPixmap::fromImage(image);
            loaded.failed = image.isNull();
            loaded.request.reset();
            arrived_();
        });
    const auto shown = entry.picture;
    forgetOldest();
    return shown;
}

bool FileThumbnails::isBroken(const std::filesystem::path& file) const
{
    const auto found = entries_.find(file.native());
    return found != entries_.end() && found->second.failed;
}

void FileThumbnails::forgetOldest()
{
    if (order_.size() > mostKept) {
        entries_.erase(order_.front());
        order_.pop_front();
    }
    std::size_t waiting = 0;
    for (auto key = order_.rbegin(); key != order_.rend(); ++key)
        if (auto& entry = entries_[*key]; entry.request && ++waiting > mostWaiting)
            entry.request.reset();
}

void FileThumbnails::clear()
{
    entries_.clear();
    order_.clear();
}

void paintThumbnail(QPainter& painter, const QRect& place, const QPixmap& picture)
{
    const auto size = picture.size().scaled(place.size(), Qt::KeepAspectRatio);
    const QRect middle(place.x() + (place.width() - size.width()) / 2,
        place.y() + (place.height() - size.height()) / 2, size.width(), size.height());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(middle, picture);
}

} // namespace korvo
