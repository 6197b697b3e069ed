#include "app/view/ViewZoom.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

ViewZoom zoomOf(ViewPoint photo, ViewPoint view)
{
    ViewZoom zoom;
    zoom.setPhoto(photo);
    zoom.setView(view);
    return zoom;
}

/// Where a pixel of the photo is in the view.
ViewPoint placeOf(const ViewZoom& zoom, ViewPoint pixel)
{
    return {zoom.origin().x + pixel.x * zoom.scale(), zoom.origin().y + pixel.y * zoom.scale()};
}

} // namespace

TEST(ViewZoom, showsTheWholePhotoInTheMiddleAndNeverEnlarged)
{
    struct Case {
        ViewPoint photo, view;
        double scale;
        ViewPoint origin;
    };
    for (const auto& [photo, view, scale, origin] : {
             Case{{6000, 4000}, {1500, 1200}, 0.25, {0, 100}},
             {{4000, 6000}, {1500, 1200}, 0.2, {350, 0}},
             {{300, 200}, {1500, 1200}, 1, {600, 500}},
             {{0, 0}, {1500, 1200}, 1, {750, 600}},
         }) {
        const auto zoom = zoomOf(photo, view);
        EXPECT_EQ(zoom.scale(), scale);
        EXPECT_EQ(zoom.origin(), origin);
    }
}

TEST(ViewZoom, aPointStaysWhereItIsUnlessTheBordersForbidIt)
{
    auto zoom = zoomOf({6000, 4000}, {1500, 1000});
    zoom.toggle({600, 500});
    EXPECT_EQ(zoom.scale(), 1);
    EXPECT_EQ(placeOf(zoom, {2400, 2000}), (ViewPoint{600, 500}));
    zoom.zoomTo(2, {100, 100});
    EXPECT_EQ(placeOf(zoom, {1900, 1600}), (ViewPoint{100, 100}));
    zoom.toggle({0, 0});
    EXPECT_TRUE(zoom.isFit());

    zoom.toggle({0, 0}); // at the corner there is nothing beyond
    EXPECT_EQ(zoom.origin(), (ViewPoint{0, 0}));
    zoom.pan({-100, 1e6});
    EXPECT_EQ(zoom.origin(), (ViewPoint{-100, 0}));
    zoom.pan({-1e6, -1e6});
    EXPECT_EQ(zoom.origin(), (ViewPoint{1500 - 6000, 1000 - 4000}));
    zoom.setView({3000, 5000}); // where the view is higher than the photo, the photo is in its middle
    EXPECT_EQ(zoom.origin(), (ViewPoint{3000 - 6000, 500}));
}

} // namespace korvo
