#pragma once

namespace korvo {

/// A place or a distance in device pixels of a view, from its upper left corner.
struct ViewPoint {
    double x = 0;
    double y = 0;

    bool operator==(const ViewPoint&) const = default;
};

/// How a photo lies in a view: as a whole, or at a scale with a part of it in the middle. All lengths are
/// device pixels, so that a scale of 1 shows each of the photo's pixels as one of the screen's.
class ViewZoom {
public:
    /// Both sizes may be 0 while they are not known.
    void setPhoto(ViewPoint size);
    void setView(ViewPoint size);

    bool isFit() const { return scale_ == 0; }
    /// Device pixels for one of the photo's.
    double scale() const;
    /// The upper left corner of the photo. It is in the middle, or covers the view.
    ViewPoint origin() const;

    void showWhole() { scale_ = 0; }
    /// Keeps the part of the photo at `point` where it is.
    void zoomTo(double scale, ViewPoint point);
    /// From the whole photo to 1:1 at the point, and from anything else to the whole photo.
    void toggle(ViewPoint point);
    void pan(ViewPoint distance);
    /// Shows the same part of this photo at the same scale.
    void follow(const ViewZoom& other);
    /// The scale at which the whole photo is shown; it is never enlarged.
    double fitScale() const;

private:
    ViewPoint photo_, view_;
    double scale_ = 0; // 0: the whole photo
    ViewPoint middle_; // of the view, as fractions of the photo
};

} // namespace korvo
