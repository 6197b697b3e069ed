#pragma once

#include "app/desktop/Pictures.h"

#include <QPixmap>

#include <deque>
#include <functional>
#include <string>
#include <unordered_map>

namespace korvo {

/// Small pictures for a list that paints what is on screen: what is asked for while painting is loaded, the
/// newest wishes first kept, and `arrived` asks for another painting. Used on the main thread.
class FileThumbnails {
public:
    /// `pictures` must outlive it. `size` is the longer side in points.
    FileThumbnails(Pictures& pictures, int size, std::function<void()> arrived);

    /// The picture of a file with its edits, for a screen of that ratio; one for another screen while it
    /// loads, null while there is none.
    QPixmap picture(
        const std::filesystem::path& file, double devicePixelRatio, const SharedText& editsJSON = {});
    /// Whether loading it has failed.
    bool isBroken(const std::filesystem::path& file) const;
    /// Drops all that is loaded and asked for.
    void clear();

private:
    struct Entry {
        QPixmap picture;
        int pixels = 0; // that were asked for last
        bool failed = false;
        Pictures::Handle request;
    };

    void forgetOldest();

    Pictures& pictures_;
    int size_;
    std::function<void()> arrived_;
    std::unordered_map<std::string, Entry> entries_; // by path
    std::deque<std::string> order_; // of asking
};

/// The list's background, or the picture in the middle of a place with its own shape.
void paintThumbnail(QPainter& painter, const QRect& place, const QPixmap& picture);

} // namespace korvo
