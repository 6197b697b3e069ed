#include "app/cli/PhotoOutput.h"

#include "base/Json.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvo {

namespace {

template <typename T>
void setMember(JsonWriter& json, std::string_view key, const CompactOptional<T>& value)
{
    if (value)
        json.member(key, *value);
}

void setMember(JsonWriter& json, std::string_view key, const SharedText& text)
{
    if (!text.empty())
        json.member(key, text.view());
}

void writeMetadata(JsonWriter& json, const PhotoMetadata& metadata)
{
    json.key("metadata");
    json.beginObject();
    forEachField<PhotoMetadata>(
        [&](const auto& field) { setMember(json, field.name, metadata.*field.member); });
    json.endObject();
}

std::string dateText(const CompactOptional<double>& date)
{
    return date ? localDateTime(*date) : std::string();
}

} // namespace

std::string photoJSON(const PhotoItem& item)
{
    JsonWriter json;
    json.beginObject();
    json.member("id", item.id);
    json.member("path", item.path().native());
    writeMetadata(json, item.metadata);
    json.member("edits", item.readableEdits());
    json.member("rating", item.rating);
    json.member("flagged", item.flagged);
    json.member("label", static_cast<int>(item.label));
    setMember(json, "versionOf", item.versionOf);
    setMember(json, "versionName", item.versionName);
    setMember(json, "stackID", item.stackID);
    setMember(json, "referencePath", item.referencePath);
    setMember(json, "projectID", item.projectID);
    setMember(json, "camera", item.camera);
    setMember(json, "lens", item.lens);
    setMember(json, "iso", item.iso);
    setMember(json, "focalLength", item.focalLength);
    setMember(json, "aperture", item.aperture);
    setMember(json, "shutter", item.shutter);
    setMember(json, "people", item.people);
    setMember(json, "latitude", item.latitude);
    setMember(json, "longitude", item.longitude);
    setMember(json, "place", item.place);
    json.member("dirty", item.dirty);
    json.member("addedAt", item.addedAt);
    setMember(json, "fileDate", item.fileDate);
    setMember(json, "captureDate", item.captureDate);
    json.endObject();
    return json.take();
}

std::string photoLine(const PhotoItem& item)
{
    std::string line = fmt::format("{:>8}  {}", item.id, printable(item.path().native()));
    const auto add = [&](std::string_view mark) {
        if (!mark.empty())
            (line += "  ") += mark;
    };
    add(item.isRejected() ? "rejected"
                          : std::string(static_cast<std::size_t>(std::max(item.rating, 0)), '*'));
    add(item.flagged ? "flagged" : "");
    add(item.label == PhotoLabel::none ? std::string_view() : name(item.label));
    add(item.hasEdits() ? "edited" : "");
    add(printable(item.metadata.title));
    return line;
}

std::string photoText(const PhotoItem& item)
{
    std::string text
        = fmt::format("{:<14}{}\n{:<14}{}\n", "photo", item.id, "file", printable(item.path().native()));
    const auto line = [&](std::string_view label, const auto& value) {
        if (const auto shown = printable(fmt::format("{}", value)); !shown.empty())
            text += fmt::format("{:<14}{}\n", label, shown);
    };
    const auto number = [&](std::string_view label, const auto& value, std::string_view unit) {
        if (value)
            line(label, fmt::format("{}{}", *value, unit));
    };
    line("rating", ratingText(item.rating));
    line("flagged", item.flagged ? "yes" : "");
    line("label", item.label == PhotoLabel::none ? std::string_view() : name(item.label));
    forEachField<PhotoMetadata>(
        [&](const auto& field) { line(field.name, (item.metadata.*field.member).view()); });
    line("camera", item.camera.view());
    line("lens", item.lens.view());
    number("iso", item.iso, "");
    number("focal length", item.focalLength, " mm");
    number("aperture", item.aperture, "");
    number("shutter", item.shutter, " s");
    line("captured", dateText(item.captureDate));
    line("file date", dateText(item.fileDate));
    line("added", localDateTime(item.addedAt));
    if (item.latitude && item.longitude)
        line("position", fmt::format("{} {}", *item.latitude, *item.longitude));
    line("place", item.place.view());
    line("people", item.people.view());
    number("version of", item.versionOf, "");
    line("version", item.versionName.view());
    number("stack", item.stackID, "");
    number("project", item.projectID, "");
    line("reference", item.referencePath.view());
    line("unsaved", item.dirty ? "metadata not yet written into the file" : "");
    line("edits", item.editsJSON.view());
    text.pop_back();
    return text;
}

} // namespace korvo
