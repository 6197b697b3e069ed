#include "catalog/PhotoRows.h"

#include "base/Json.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>

namespace korvo {

namespace {

enum Column {
    id,
    path,
    addedAt,
    mtime,
    rating,
    flagged,
    dirty,
    altText,
    title,
    caption,
    keywords,
    creator,
    copyright,
    edits,
    meme,
    label,
    versionOf,
    versionName,
    stackID,
    referencePath,
    projectID,
    camera,
    lens,
    iso,
    focalLength,
    aperture,
    shutter,
    captureDate,
    people,
    latitude,
    longitude,
    gpsRead,
    place,
    columnCount
};

constexpr const char* columnNames[]
    = {"id", "path", "added_at", "mtime", "rating", "flagged", "dirty", "alt_text", "title", "caption",
        "keywords", "creator", "copyright", "edits", "meme", "label", "version_of", "version_name",
        "stack_id", "reference_path", "project_id", "camera", "lens", "iso", "focal_length", "aperture",
        "shutter", "capture_date", "people", "latitude", "longitude", "gps_read", "place"};
static_assert(std::size(columnNames) == columnCount);

/// What says that nothing is edited, written out.
const std::string& noEdits()
{
    static const std::string json = toJson(PhotoEdits());
    return json;
}

} // namespace

/// The texts seen last, found by their hash: neighbours repeat each other's folder, camera and keywords. A
/// fixed number of places bounds what a library of a million different texts can take.
class PhotoRows::SharedTexts {
public:
    SharedText get(std::string_view text)
    {
        if (text.empty())
            return {};
        SharedText& place = places_[std::hash<std::string_view>()(text) % places_.size()];
        if (place != text)
            place = SharedText(text);
        return place;
    }

private:
    std::array<SharedText, 4096> places_;
};

PhotoRows::PhotoRows(const Statement& statement)
    : statement_(statement), texts_(std::make_unique<SharedTexts>())
{
    for (const char* const name : columnNames)
        columns_.push_back(statement.column(name));
}

PhotoRows::~PhotoRows() = default;

PhotoItem PhotoRows::item()
{
    const auto at = [this](Column column) { return columns_[column]; };
    const auto text = [&](Column column) { return SharedText(statement_.text(at(column))); };
    const auto shared = [&](Column column) { return texts_->get(statement_.text(at(column))); };
    const auto integer = [&](Column column) { return statement_.integer(at(column)); };
    const auto flag = [&](Column column) { return statement_.integer(at(column)) != 0; };
    const auto optionalInteger = [&](Column column) { return statement_.optionalInteger(at(column)); };
    const auto optionalReal = [&](Column column) { return statement_.optionalReal(at(column)); };

    PhotoItem item;
    item.id = integer(id);
    const auto file = statement_.text(at(path));
    const auto separator = file.rfind('/');
    item.folder = texts_->get(file.substr(0, separator == file.npos ? 0 : separator));
    item.filename = SharedText(file.substr(separator + 1));
    item.metadata
        = {text(altText), text(title), text(caption), shared(keywords), shared(creator), shared(copyright)};
    if (const auto stored = statement_.text(at(edits)); stored != noEdits())
        item.editsJSON = SharedText(stored);
    item.rating = static_cast<std::int32_t>(integer(rating));
    item.label = photoLabel(integer(Column::label)).value_or(PhotoLabel::none);
    item.flagged = flag(flagged);
    item.gpsRead = flag(gpsRead);
    item.dirty = flag(dirty);
    item.versionOf = optionalInteger(versionOf);
    item.versionName = shared(versionName);
    item.stackID = optionalInteger(stackID);
    item.referencePath = text(referencePath);
    item.projectID = optionalInteger(projectID);
    item.camera = shared(camera);
    item.lens = shared(lens);
    item.iso = optionalInteger(iso);
    item.focalLength = optionalReal(focalLength);
    item.aperture = optionalReal(aperture);
    item.shutter = optionalReal(shutter);
    item.people = shared(people);
    item.latitude = optionalReal(latitude);
    item.longitude = optionalReal(longitude);
    item.place = shared(place);
    item.memeJSON = text(meme);
    item.addedAt = statement_.real(at(addedAt));
    item.fileDate = optionalReal(mtime);
    item.captureDate = optionalReal(captureDate);
    return item;
}

} // namespace korvo
