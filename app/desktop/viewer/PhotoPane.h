#pragma once

#include "app/desktop/viewer/MarksBar.h"
#include "app/desktop/viewer/PhotoView.h"

namespace korvo {

/// A photo with its line of marks below it.
class PhotoPane : public QWidget {
public:
    PhotoPane(MainWindow& window, PhotoFeed::Neighbours neighbours);

    PhotoView& view() { return *view_; }
    const PhotoView& view() const { return *view_; }
    std::optional<PhotoID> photo() { return view_->feed().photo(); }
    void setPhoto(std::optional<PhotoID> photo);
    /// Shows a file that is no photo of the library, or only the title where there is none.
    void setFile(const std::filesystem::path& file, const QString& title);
    void setLook(Look look);

private:
    void showNote();
    void describe();

    Desktop& desktop_;
    PhotoView* view_;
    MarksBar* bar_;
    Look look_ = Look::after;
    Connection feedChanged_, zoomed_, storeChanged_;
};

} // namespace korvo
