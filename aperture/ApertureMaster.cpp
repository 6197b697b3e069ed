#include "aperture/ApertureMaster.h"

#include "base/Text.h"
#include "catalog/CameraName.h"
#include "catalog/KeywordList.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace korvo {

namespace fs = std::filesystem;

namespace {

using Version = ApertureLibrary::Version;

/// From 1 January 1970 to 1 January 2001, UTC.
constexpr UnixTime apertureEpoch = 978307200;

/// Finds what the first of the versions has that has it: a master and its versions share one description.
template <typename Map, typename Get>
auto firstOf(const ApertureSource& source, const Map& byVersion, Get get)
    -> decltype(get(byVersion.begin()->second))
{
    for (const auto* version : source.versions)
        if (const auto entry = byVersion.find(version->modelId); entry != byVersion.end())
            if (auto found = get(entry->second))
                return found;
    return {};
}

std::vector<std::string> allKeywords(const ApertureSource& source, const ApertureDescriptions& descriptions)
{
    std::vector<std::string> keywords;
    std::unordered_set<std::string_view> seen;
    for (const auto* version : source.versions)
        if (const auto entry = descriptions.metadata.find(version->modelId);
            entry != descriptions.metadata.end())
            for (const auto& keyword : entry->second.keywords)
                if (seen.insert(keyword).second)
                    keywords.push_back(keyword);
    return keywords;
}

PhotoMetadata photoMetadata(const ApertureSource& source, const ApertureDescriptions& descriptions)
{
    using Field = std::optional<std::string> ApertureLibrary::Metadata::*;
    const auto text = [&](Field field) {
        return SharedText(firstOf(source, descriptions.metadata, [&](const auto& metadata) {
            return metadata.*field;
        }).value_or(""));
    };
    using Metadata = ApertureLibrary::Metadata;
    return {{}, text(&Metadata::title), text(&Metadata::caption),
        joinKeywords(allKeywords(source, descriptions)), text(&Metadata::creator),
        text(&Metadata::copyright)};
}

CameraData cameraData(const ApertureSource& source, const ApertureDescriptions& descriptions)
{
    const auto text = [&](std::string_view key) {
        return firstOf(source, descriptions.exif, [&](const auto& exif) {
            const auto found = exif.texts.find(key);
            return found == exif.texts.end() ? std::nullopt
                                             : std::optional(std::string(trimmed(found->second)));
        }).value_or("");
    };
    const auto number = [&](std::string_view key) {
        return firstOf(source, descriptions.exif, [&](const auto& exif) {
            const auto found = exif.numbers.find(key);
            const bool isThere
                = found != exif.numbers.end() && found->second > 0 && std::isfinite(found->second);
            return isThere ? std::optional(found->second) : std::nullopt;
        });
    };
    CameraData camera{.camera = cameraName(text("Make"), text("Model")),
        .lens = text("LensModel"),
        .focalLength = number("FocalLength"),
        .aperture = number("ApertureValue"),
        .shutter = number("ShutterSpeed")};
    if (const auto iso = number("ISOSpeedRating"); iso && *iso < 1e9)
        camera.iso = static_cast<std::int64_t>(std::lround(*iso));
    if (const auto date = source.master->imageDate; date && std::isfinite(*date))
        camera.captureDate = *date + apertureEpoch;
    return camera;
}

bool isPosition(const Version& version)
{
    return version.latitude && version.longitude && std::abs(*version.latitude) <= 90
        && std::abs(*version.longitude) <= 180;
}

/// What all photos of the master have in common.
NewPhoto masterRow(
    const ApertureSource& source, const ApertureDescriptions& descriptions, const fs::path& file)
{
    NewPhoto row;
    row.path = file.native();
    try {
        row.fileDate = modificationTime(file);
        row.fileSize = static_cast<std::int64_t>(fs::file_size(file));
    } catch (const fs::filesystem_error&) {
        // It was there a moment ago; the row then knows no size and is read again.
    }
    row.metadata = photoMetadata(source, descriptions);
    row.camera = cameraData(source, descriptions);
    const auto placed = std::find_if(source.versions.begin(), source.versions.end(),
        [](const Version* version) { return isPosition(*version); });
    if (placed != source.versions.end()) {
        row.latitude = (*placed)->latitude;
        row.longitude = (*placed)->longitude;
    }
    row.read = {.camera = !row.camera.camera.empty() || row.camera.iso || row.camera.aperture,
        .captureDate = row.camera.captureDate.has_value(),
        .position = placed != source.versions.end()};
    return row;
}

void setMarks(NewPhoto& row, const Version& version)
{
    row.rating = static_cast<int>(std::clamp<std::int64_t>(version.rating, rejectedRating, highestRating));
    row.flagged = version.isFlagged;
    const auto color = version.colorLabelIndex.value_or(-1);
    row.label = photoLabel(color < 0 || color > 6 ? 0 : color + 1).value_or(PhotoLabel::none);
}

/// Degrees clockwise as our edits count them.
std::int64_t quarterTurns(std::int64_t degrees)
{
    return (degrees % 360 + 360) % 360 / 90;
}

class MasterImport {
public:
    MasterImport(ApertureLibrary& library, const ApertureSource& source, const MatchRender& match)
        : library_(library), source_(source), match_(match)
    {
        const bool isAdjusted = std::any_of(source.versions.begin(), source.versions.end(),
            [](const Version* version) { return version->hasEnabledAdjustments; });
        for (const auto* version : source.versions)
            adjustments_.push_back(
                isAdjusted ? library.adjustments(version->uuid) : std::vector<ApertureAdjustment>());
        for (const auto& adjustments : adjustments_) {
            const auto known = ApertureTranslator::asShot(adjustments);
            if (!asShot_.temperature)
                asShot_ = known;
        }
    }

    PreparedMaster run(const NewPhoto& common)
    {
        for (std::size_t i = 0; i < source_.versions.size(); ++i)
            add(*source_.versions[i], adjustments_[i], common);
        return std::move(result_);
    }

private:
    void add(const Version& version, const std::vector<ApertureAdjustment>& adjustments, NewPhoto row)
    {
        setMarks(row, version);
        row.versionName = versionName(version);
        const auto preview = library_.previewFile(version, *source_.master);
        row.referencePath = preview ? preview->native() : "";
        auto edits = translated(version, adjustments);
        if (const auto turns = quarterTurns(version.rotation))
            edits.rotation = turns;
        if (match_ && preview) {
            edits.apertureMatch = match_(row.path, edits, *preview);
            result_.matched += edits.apertureMatch.has_value();
        }
        row.edits = storedEdits(edits);
        const bool isVersion = !result_.photos.empty();
        result_.photos.push_back(
            {std::move(row), isVersion ? std::optional<std::size_t>(0) : std::nullopt, version.projectUuid});
    }

    PhotoEdits translated(const Version& version, const std::vector<ApertureAdjustment>& adjustments)
    {
        if (!version.hasEnabledAdjustments)
            return {};
        ++result_.adjusted;
        return ApertureTranslator::translate(
            adjustments, {asShot_, version.masterWidth, version.masterHeight, version.rotation},
            [this](const std::string& uuid) { return library_.maskFile(uuid); }, result_.report);
    }

    /// A master has a name of its own only where the user gave it one.
    std::string versionName(const Version& version) const
    {
        const auto name = version.name.value_or("");
        if (!result_.photos.empty())
            return name.empty() ? "Version " + std::to_string(result_.photos.size() + 1) : name;
        return name == fs::path(source_.master->fileName).stem() ? "" : name;
    }

    ApertureLibrary& library_;
    const ApertureSource& source_;
    const MatchRender& match_;
    std::vector<std::vector<ApertureAdjustment>> adjustments_; // of each version
    ApertureTranslator::WhiteBalance asShot_;
    PreparedMaster result_;
};

} // namespace

PreparedMaster importMaster(ApertureLibrary& library, const ApertureSource& source,
    const ApertureDescriptions& descriptions, const MatchRender& match)
{
    const auto [file, isPresent] = library.masterFile(*source.master);
    if (!isPresent)
        return {};
    return MasterImport(library, source, match).run(masterRow(source, descriptions, file));
}

} // namespace korvo
