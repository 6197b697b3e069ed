#include "app/view/ViewerWishes.h"

#include "catalog/FileTypes.h"
#include "edits/Geometry.h"

#include <cmath>

namespace korvo {

namespace {

constexpr std::ptrdiff_t neighbours[] = {1, 2, -1, 3}; // in the direction of travel
constexpr std::size_t developedNeighbours = 1;

double leastKept(const PhotoItem& item)
{
    const auto edits = item.readableEdits();
    return edits ? geometryOf(*edits).leastKept() : 1;
}

} // namespace

std::vector<DecodeWish> picturesFor(const PhotoItem& item, int size, ViewDetail detail)
{
    const auto file = item.path();
    const int enough = static_cast<int>(std::min(std::ceil(size / leastKept(item)), 1e6));
    std::vector<DecodeWish> wishes;
    if (fileKind(item.filename.view()) == FileKind::raw)
        wishes.push_back({file, enough, PictureSource::quick});
    wishes.push_back({file, enough, PictureSource::whole});
    if (detail == ViewDetail::full)
        wishes.push_back({file, 0, PictureSource::whole});
    return wishes;
}

std::vector<DecodeWish> viewerWishes(const PhotoList& list, const ViewerPlace& place)
{
    const auto& shown = list.shown();
    if (place.position >= shown.size())
        return {};
    auto wishes = picturesFor(list.items()[shown[place.position]], place.size, place.detail);
    std::vector<DecodeWish> later;
    std::size_t developed = 0;
    for (const auto step : neighbours) {
        const auto at = static_cast<std::ptrdiff_t>(place.position) + step * place.direction;
        if (at < 0 || at >= std::ssize(shown))
            continue;
        const auto pictures = picturesFor(list.items()[shown[static_cast<std::size_t>(at)]], place.size);
        wishes.push_back(pictures.front());
        if (pictures.size() > 1 && developed++ < developedNeighbours)
            later.push_back(pictures.back());
    }
    wishes.insert(wishes.end(), later.begin(), later.end());
    return wishes;
}

} // namespace korvo
