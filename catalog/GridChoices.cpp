#include "catalog/GridChoices.h"

#include "catalog/FileTypes.h"

namespace korvo {

std::string_view titleOf(SortKey key)
{
    switch (key) {
    case SortKey::name:
        return "By Name";
    case SortKey::captured:
        return "By Capture Date";
    case SortKey::imported:
        return "By Date Added";
    case SortKey::fileDate:
        return "By File Date";
    case SortKey::rating:
        return "By Rating";
    }
    return {};
}

std::string_view titleOf(GridFilter filter)
{
    switch (filter) {
    case GridFilter::unratedOrBetter:
        return "Unrated or Better";
    case GridFilter::starred:
        return "Starred";
    case GridFilter::flagged:
        return "Flagged";
    case GridFilter::rejected:
        return "Rejected";
    case GridFilter::videos:
        return "Videos";
    case GridFilter::hasGPS:
        return "Has Location";
    case GridFilter::noGPS:
        return "No Location";
    case GridFilter::hasAlt:
        return "Has ALT Text";
    case GridFilter::missingAlt:
        return "Missing ALT Text";
    case GridFilter::adjusted:
        return "Adjusted";
    case GridFilter::playground:
        return "Playground";
    }
    return {};
}

bool passes(const PhotoItem& item, GridFilter filter)
{
    const bool hasPosition = item.latitude && item.longitude;
    switch (filter) {
    case GridFilter::unratedOrBetter:
        return !item.isRejected();
    case GridFilter::starred:
        return item.rating > 0;
    case GridFilter::flagged:
        return item.flagged;
    case GridFilter::rejected:
        return item.isRejected();
    case GridFilter::videos:
        return isVideo(item.filename);
    case GridFilter::hasGPS:
        return hasPosition;
    case GridFilter::noGPS:
        return !hasPosition;
    case GridFilter::hasAlt:
        return !item.metadata.altText.empty();
    case GridFilter::missingAlt:
        return item.metadata.altText.empty();
    case GridFilter::adjusted:
        return item.hasEdits();
    case GridFilter::playground:
        return !item.memeJSON.empty();
    }
    return true;
}

PhotoTest testOf(std::optional<GridFilter> filter)
{
    return [filter](const PhotoItem& item) { return !filter || passes(item, *filter); };
}

} // namespace korvo
