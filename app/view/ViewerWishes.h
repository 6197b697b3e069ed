#pragma once

#include "app/pictures/DecodedPhotos.h"
#include "catalog/store/PhotoList.h"

namespace korvo {

/// Whether all pixels of the photo are needed, as for 100 % and the loupe.
enum class ViewDetail { screen, full };

/// Where the viewer is among the photos shown.
struct ViewerPlace {
    std::size_t position = 0; ///< of the photo on screen
    std::ptrdiff_t direction = 1; ///< of the last step: 1 or -1
    int size = 0; ///< pixels of the longer side of the view
    ViewDetail detail = ViewDetail::screen; ///< of the photo on screen
};

/// The pictures of one photo that the viewer shows, one after the other: of a raw file its preview and then
/// the developed picture, of others the picture itself. Each large enough for the view after the photo's
/// crop.
std::vector<DecodeWish> picturesFor(const PhotoItem& item, int size, ViewDetail detail = ViewDetail::screen);

/// What is to be decoded, the most urgent first: what is on screen, then what the next steps would show, more
/// of it in the direction of travel than behind; raw files of neighbours are developed last.
std::vector<DecodeWish> viewerWishes(const PhotoList& list, const ViewerPlace& place);

} // namespace korvo
