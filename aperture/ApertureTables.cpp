#include "aperture/ApertureLibrary.h"
#include "platform/Sha256.h"

#include <algorithm>

namespace korvo {

namespace {

/// A keyed archive. Bytes that are none, or none that is sound, hold nothing.
std::optional<BinaryPlist> archived(Bytes bytes)
{
    try {
        return BinaryPlist::unarchive(bytes);
    } catch (const BinaryPlist::ParseError&) {
        return std::nullopt; // the one album or adjustment goes without; the rest of the library is read
    }
}

using Places = std::unordered_map<std::int64_t, std::int64_t>; // of versions in an album

/// Of the albums that the user has arranged by hand. Joined here, as a damaged database may hold a uuid any
/// number of times.
std::unordered_map<std::int64_t, Places> handMadeOrders(BundleDatabase& library)
{
    std::unordered_map<std::string, std::int64_t> versions, albums;
    library.forEachIfThere("SELECT uuid, modelId FROM RKVersion",
        [&](const BundleRow& row) { versions[row.text(0)] = row.integer(1); });
    library.forEachIfThere("SELECT uuid, modelId FROM RKAlbum",
        [&](const BundleRow& row) { albums[row.text(0)] = row.integer(1); });
    std::unordered_map<std::int64_t, Places> orders;
    library.forEachIfThere(
        "SELECT containerUuid, objectUuid, orderNumber FROM RKCustomSortOrder", [&](const BundleRow& row) {
            const auto album = albums.find(row.text(0));
            const auto version = versions.find(row.text(1));
            if (album != albums.end() && version != versions.end())
                orders[album->second][version->second] = row.integer(2);
        });
    return orders;
}

/// Those without a place come behind the others.
void arrange(std::vector<std::int64_t>& versions, const Places& places)
{
    const auto place = [&](std::int64_t version) {
        const auto found = places.find(version);
        return found == places.end() ? INT64_MAX : found->second;
    };
    std::stable_sort(versions.begin(), versions.end(),
        [&](std::int64_t a, std::int64_t b) { return place(a) < place(b); });
}

/// The members of each album, in its order.
std::unordered_map<std::int64_t, std::vector<std::int64_t>> albumMembers(BundleDatabase& library)
{
    std::unordered_map<std::int64_t, std::vector<std::int64_t>> members;
    // One pass in the order in which they were put in; asked for album by album, the index would give them
    // in the order of the versions.
    library.forEach("SELECT albumId, versionId FROM RKAlbumVersion ORDER BY modelId",
        [&](const BundleRow& row) { members[row.integer(0)].push_back(row.integer(1)); });
    for (const auto& [album, places] : handMadeOrders(library))
        arrange(members[album], places);
    return members;
}

} // namespace

std::string ApertureLibrary::identity()
{
    std::string uuid;
    library_.forEachIfThere(
        "SELECT propertyValue FROM RKAdminData WHERE propertyName = 'databaseUuid' AND propertyValue != '' "
        "ORDER BY propertyArea LIMIT 1",
        [&](const BundleRow& row) { uuid = row.text(0); });
    if (!uuid.empty())
        return uuid;
    // Without one it is known by its oldest photos, whose uuids are random and never given again.
    Sha256 digest;
    library_.forEach("SELECT uuid FROM RKMaster WHERE uuid IS NOT NULL ORDER BY modelId LIMIT 8",
        [&](const BundleRow& row) { digest.add(Bytes(row.text(0) + "\n")); });
    return digest.finish();
}

std::unordered_map<std::string, ApertureLibrary::Master> ApertureLibrary::masters()
{
    std::unordered_map<std::string, Master> masters;
    library_.forEach("SELECT uuid, modelId, imagePath, fileName, fileIsReference, isMissing, imageDate\n"
                     "FROM RKMaster WHERE isInTrash = 0",
        [&](const BundleRow& row) {
            if (auto uuid = row.text(0); !uuid.empty())
                masters.insert_or_assign(uuid,
                    Master{uuid, row.integer(1), row.text(2), row.text(3), row.isTrue(4), row.isTrue(5),
                        row.optionalNumber(6), {}});
        });
    library_.forEachIfThere(
        "SELECT m.uuid, v.name FROM RKMaster m JOIN RKVolume v ON v.uuid = m.fileVolumeUuid "
        "WHERE m.fileIsReference != 0",
        [&](const BundleRow& row) {
            if (const auto master = masters.find(row.text(0)); master != masters.end())
                master->second.volume = row.text(1);
        });
    return masters;
}

std::vector<ApertureLibrary::Version> ApertureLibrary::versions()
{
    std::vector<Version> versions;
    library_.forEach("SELECT uuid, modelId, masterUuid, versionNumber, name, mainRating, isFlagged,\n"
                     "       colorLabelIndex, rotation, stackUuid, projectUuid, masterWidth, masterHeight,\n"
                     "       hasEnabledAdjustments, exifLatitude, exifLongitude\n"
                     "FROM RKVersion\n"
                     "WHERE isInTrash = 0 AND isOriginal = 0 AND showInLibrary = 1\n"
                     "ORDER BY masterUuid, versionNumber",
        [&](const BundleRow& row) {
            if (auto uuid = row.text(0); !uuid.empty())
                versions.push_back({std::move(uuid), row.integer(1), row.text(2), row.integer(3),
                    row.optionalText(4), row.integer(5), row.isTrue(6), row.optionalInteger(7),
                    row.integer(8), row.optionalText(9), row.optionalText(10), row.integer(11),
                    row.integer(12), row.isTrue(13), row.optionalNumber(14), row.optionalNumber(15)});
        });
    return versions;
}

std::unordered_map<std::int64_t, ApertureLibrary::Metadata> ApertureLibrary::metadata()
{
    static const std::map<std::string, std::optional<std::string> Metadata::*> fields{
        {"ObjectName", &Metadata::title}, {"Caption/Abstract", &Metadata::caption},
        {"Byline", &Metadata::creator}, {"CopyrightNotice", &Metadata::copyright}};
    std::unordered_map<std::int64_t, Metadata> metadata;
    if (properties_)
        properties_->forEach(
            "SELECT p.versionId AS v, p.propertyKey AS k, s.stringProperty AS s\n"
            "FROM RKIptcProperty p JOIN RKUniqueString s ON s.modelId = p.stringId\n"
            "WHERE p.propertyKey IN ('ObjectName', 'Caption/Abstract', 'Byline', 'CopyrightNotice')",
            [&](const BundleRow& row) {
                if (const auto field = fields.find(row.text(1)); field != fields.end())
                    metadata[row.integer(0)].*field->second = row.optionalText(2);
            });
    library_.forEach("SELECT kv.versionId AS v, k.name AS name\n"
                     "FROM RKKeywordForVersion kv JOIN RKKeyword k ON k.modelId = kv.keywordId",
        [&](const BundleRow& row) {
            if (auto name = row.optionalText(1))
                metadata[row.integer(0)].keywords.push_back(*std::move(name));
        });
    return metadata;
}

std::unordered_map<std::int64_t, ApertureLibrary::ExifValues> ApertureLibrary::exifValues()
{
    std::unordered_map<std::int64_t, ExifValues> values;
    if (!properties_)
        return values;
    properties_->forEach("SELECT p.versionId AS v, p.propertyKey AS k, s.stringProperty AS s\n"
                         "FROM RKExifStringProperty p JOIN RKUniqueString s ON s.modelId = p.stringId\n"
                         "WHERE p.propertyKey IN ('Make', 'Model', 'LensModel')",
        [&](const BundleRow& row) {
            if (auto text = row.optionalText(2))
                values[row.integer(0)].texts.insert_or_assign(row.text(1), *std::move(text));
        });
    properties_->forEach(
        "SELECT versionId AS v, propertyKey AS k, numberProperty AS n FROM RKExifNumberProperty\n"
        "WHERE propertyKey IN ('ISOSpeedRating', 'FocalLength', 'ApertureValue', 'ShutterSpeed')",
        [&](const BundleRow& row) {
            if (const auto number = row.optionalNumber(2))
                values[row.integer(0)].numbers.insert_or_assign(row.text(1), *number);
        });
    return values;
}

std::vector<ApertureLibrary::KeywordEntry> ApertureLibrary::keywordEntries()
{
    std::vector<KeywordEntry> entries;
    library_.forEach(
        "SELECT modelId, name, parentId FROM RKKeyword ORDER BY parentId, name", [&](const BundleRow& row) {
            entries.push_back({row.integer(0), row.text(1), row.optionalInteger(2)});
        });
    return entries;
}

std::vector<ApertureLibrary::Album> ApertureLibrary::albums()
{
    auto members = albumMembers(library_);
    std::vector<Album> albums;
    library_.forEach("SELECT modelId, name, albumSubclass, queryData, folderUuid FROM RKAlbum\n"
                     "WHERE isMagic = 0 AND isInTrash = 0 AND name IS NOT NULL\n"
                     "  AND name != 'Album.implicitAlbum'\n"
                     "ORDER BY name COLLATE NOCASE",
        [&](const BundleRow& row) {
            const auto id = row.integer(0);
            albums.push_back({id, row.text(1), row.integer(2), std::move(members[id]),
                archived(Bytes(row.bytes(3))), row.optionalText(4)});
        });
    return albums;
}

std::vector<ApertureLibrary::Stack> ApertureLibrary::stacks()
{
    std::map<std::string, std::vector<std::pair<std::int64_t, std::string>>> members;
    library_.forEach(
        "SELECT stackUuid, orderNumber, versionUuid FROM RKStackContent", [&](const BundleRow& row) {
            if (auto uuid = row.text(0); !uuid.empty())
                members[std::move(uuid)].emplace_back(row.integer(1), row.text(2));
        });
    std::map<std::string, std::optional<std::string>> picks;
    library_.forEach("SELECT stackUuid, albumPick FROM RKStackState WHERE albumUuid = 'allProjectsAlbum'",
        [&](const BundleRow& row) { picks[row.text(0)] = row.optionalText(1); });
    std::vector<Stack> stacks;
    for (auto& [uuid, ordered] : members) {
        std::stable_sort(
            ordered.begin(), ordered.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        Stack stack{uuid, {}, picks[uuid]};
        for (auto& member : ordered)
            stack.versionUuids.push_back(std::move(member.second));
        stacks.push_back(std::move(stack));
    }
    return stacks;
}

std::vector<ApertureLibrary::Adjustment> ApertureLibrary::adjustments(const std::string& versionUuid)
{
    std::vector<Adjustment> adjustments;
    std::vector<std::string> archives;
    library_.forEach(
        "SELECT name, isEnabled, maskUuid, data FROM RKImageAdjustment\n"
        "WHERE versionUuid = ? ORDER BY adjIndex, modelId",
        [&](const BundleRow& row) {
            adjustments.push_back({row.text(0), row.isTrue(1), row.optionalText(2), {}});
            archives.push_back(row.bytes(3));
        },
        versionUuid);
    // Decoded without the connection, which other threads wait for.
    for (std::size_t i = 0; i < archives.size(); ++i)
        if (auto archive = archived(Bytes(archives[i]));
            archive && archive->root().kind() == BinaryPlist::Value::Kind::dict)
            adjustments[i].parameters = *std::move(archive);
    return adjustments;
}

} // namespace korvo
