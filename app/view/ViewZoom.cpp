#include "app/view/ViewZoom.h"

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

/// A fraction of the photo that lets it cover the view, or puts it into the middle of it.
double kept(double middle, double photo, double view)
{
    if (photo <= view)
        return 0.5;
    const double margin = view / photo / 2;
    return std::clamp(middle, margin, 1 - margin);
}

} // namespace

void ViewZoom::setPhoto(ViewPoint size)
{
    photo_ = size;
}

void ViewZoom::setView(ViewPoint size)
{
    view_ = size;
}

double ViewZoom::fitScale() const
{
    if (photo_.x <= 0 || photo_.y <= 0)
        return 1;
    return std::min({view_.x / photo_.x, view_.y / photo_.y, 1.0});
}

double ViewZoom::scale() const
{
    return isFit() ? fitScale() : scale_;
}

ViewPoint ViewZoom::origin() const
{
    const auto corner = [this](double middle, double photo, double view) {
        const double length = photo * scale();
        return std::round(view / 2 - kept(isFit() ? 0.5 : middle, length, view) * length);
    };
    return {corner(middle_.x, photo_.x, view_.x), corner(middle_.y, photo_.y, view_.y)};
}

void ViewZoom::zoomTo(double scale, ViewPoint point)
{
    if (photo_.x <= 0 || photo_.y <= 0)
        return;
    const double before = this->scale();
    const auto from = origin();
    const auto place = [&](double at, double corner, double photo, double view) {
        const double fraction = std::clamp((at - corner) / (photo * before), 0.0, 1.0);
        return kept(fraction + (view / 2 - at) / (photo * scale), photo * scale, view);
    };
    middle_ = {place(point.x, from.x, photo_.x, view_.x), place(point.y, from.y, photo_.y, view_.y)};
    scale_ = scale;
}

void ViewZoom::toggle(ViewPoint point)
{
    if (isFit())
        zoomTo(1, point);
    else
        showWhole();
}

void ViewZoom::follow(const ViewZoom& other)
{
    scale_ = other.scale_;
    middle_ = other.middle_;
}

void ViewZoom::pan(ViewPoint distance)
{
    if (isFit())
        return;
    const auto moved = [this](double middle, double way, double photo, double view) {
        const double length = photo * scale_;
        return kept(middle - way / length, length, view);
    };
    middle_
        = {moved(middle_.x, distance.x, photo_.x, view_.x), moved(middle_.y, distance.y, photo_.y, view_.y)};
}

} // namespace korvo
