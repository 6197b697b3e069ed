#include "aperture/ApertureLibrary.h"
#include "platform/Sha256.h"

#include <algorithm>

namespace korvo {

namespace {

std::string text(const Statement& row, int column)
{
    return std::string(row.text(column));
}

std::optional<std::string> optionalText(const Statement& row, int column)
{
    return row.isNull(column) ? std::nullopt : std::optional(text(row, column));
}

std::optional<double> optionalNumber(const Statement& row, int column)
{
    return row.isNumber(column) ? std::optional(row.real(column)) : std::nullopt;
}

Bytes bytes(const Statement& row, int column)
{
    return Bytes(row.blob(column));
}

/// The root of a keyed archive. Bytes that are none, or none that is sound, hold nothing.
std::optional<BinaryPlist::Value> archived(Bytes bytes)
{
    try {
        return BinaryPlist::unarchive(bytes);
    } catch (const BinaryPlist::ParseError&) {
        return std::nullopt; // the one album or adjustment goes without; the rest of the library is read
    }
}

/// Reads a table that not every version of Aperture has. One that cannot be read holds nothing.
template <typename Use>
void readIfThere(Database& database, std::string_view sql, Use use)
{
    try {
        auto row = database.kept(sql);
        while (row.step())
            use(row);
    } catch (const DatabaseError& error) {
        if (error.which() != DatabaseError::Case::prepare)
            throw;
    }
}

} // namespace

std::string ApertureLibrary::identity()
{
    std::string uuid;
    readIfThere(library_,
        "SELECT propertyValue FROM RKAdminData WHERE propertyName = 'databaseUuid' AND propertyValue != '' "
        "ORDER BY propertyArea LIMIT 1",
        [&](const Statement& row) { uuid = text(row, 0); });
    if (!uuid.empty())
        return uuid;
    // Without one it is known by its oldest photos, whose uuids are random and never given again.
    Sha256 digest;
    auto row = library_.kept("SELECT uuid FROM RKMaster WHERE uuid IS NOT NULL ORDER BY modelId LIMIT 8");
    while (row.step())
        digest.add(Bytes(text(row, 0) + "\n"));
    return digest.finish();
}

std::unordered_map<std::string, ApertureLibrary::Master> ApertureLibrary::masters()
{
    std::unordered_map<std::string, Master> masters;
    auto row
        = library_.kept("SELECT uuid, modelId, imagePath, fileName, fileIsReference, isMissing, imageDate\n"
                        "FROM RKMaster WHERE isInTrash = 0");
    while (row.step())
        if (auto uuid = text(row, 0); !uuid.empty())
            masters.insert_or_assign(uuid,
                Master{uuid, row.integer(1), text(row, 2), text(row, 3), row.integer(4) != 0,
                    row.integer(5) != 0, optionalNumber(row, 6), {}});
    readIfThere(library_,
        "SELECT m.uuid, v.name FROM RKMaster m JOIN RKVolume v ON v.uuid = m.fileVolumeUuid "
        "WHERE m.fileIsReference != 0",
        [&](const Statement& volume) {
            if (const auto master = masters.find(text(volume, 0)); master != masters.end())
                master->second.volume = text(volume, 1);
        });
    return masters;
}

std::vector<ApertureLibrary::Version> ApertureLibrary::versions()
{
    std::vector<Version> versions;
    auto row = library_.kept(
        "SELECT uuid, modelId, masterUuid, versionNumber, name, mainRating, isFlagged,\n"
        "       colorLabelIndex, rotation, stackUuid, projectUuid, masterWidth, masterHeight,\n"
        "       hasEnabledAdjustments, exifLatitude, exifLongitude\n"
        "FROM RKVersion\n"
        "WHERE isInTrash = 0 AND isOriginal = 0 AND showInLibrary = 1\n"
        "ORDER BY masterUuid, versionNumber");
    while (row.step())
        if (auto uuid = text(row, 0); !uuid.empty())
            versions.push_back({std::move(uuid), row.integer(1), text(row, 2), row.integer(3),
                optionalText(row, 4), row.integer(5), row.integer(6) != 0, row.optionalInteger(7),
                row.integer(8), optionalText(row, 9), optionalText(row, 10), row.integer(11), row.integer(12),
                row.integer(13) != 0, optionalNumber(row, 14), optionalNumber(row, 15)});
    return versions;
}

std::unordered_map<std::int64_t, ApertureLibrary::Metadata> ApertureLibrary::metadata()
{
    static const std::map<std::string_view, std::optional<std::string> Metadata::*> fields{
        {"ObjectName", &Metadata::title}, {"Caption/Abstract", &Metadata::caption},
        {"Byline", &Metadata::creator}, {"CopyrightNotice", &Metadata::copyright}};
    std::unordered_map<std::int64_t, Metadata> metadata;
    if (properties_) {
        auto row = properties_->kept(
            "SELECT p.versionId AS v, p.propertyKey AS k, s.stringProperty AS s\n"
            "FROM RKIptcProperty p JOIN RKUniqueString s ON s.modelId = p.stringId\n"
            "WHERE p.propertyKey IN ('ObjectName', 'Caption/Abstract', 'Byline', 'CopyrightNotice')");
        while (row.step())
            if (const auto field = fields.find(row.text(1)); field != fields.end())
                metadata[row.integer(0)].*field->second = optionalText(row, 2);
    }
    auto row = library_.kept("SELECT kv.versionId AS v, k.name AS name\n"
                             "FROM RKKeywordForVersion kv JOIN RKKeyword k ON k.modelId = kv.keywordId");
    while (row.step())
        if (!row.isNull(1))
            metadata[row.integer(0)].keywords.push_back(text(row, 1));
    return metadata;
}

std::unordered_map<std::int64_t, ApertureLibrary::ExifValues> ApertureLibrary::exifValues()
{
    std::unordered_map<std::int64_t, ExifValues> values;
    if (!properties_)
        return values;
    auto texts
        = properties_->kept("SELECT p.versionId AS v, p.propertyKey AS k, s.stringProperty AS s\n"
                            "FROM RKExifStringProperty p JOIN RKUniqueString s ON s.modelId = p.stringId\n"
                            "WHERE p.propertyKey IN ('Make', 'Model', 'LensModel')");
    while (texts.step())
        if (!texts.isNull(2))
            values[texts.integer(0)].texts.insert_or_assign(text(texts, 1), text(texts, 2));
    auto numbers = properties_->kept(
        "SELECT versionId AS v, propertyKey AS k, numberProperty AS n FROM RKExifNumberProperty\n"
        "WHERE propertyKey IN ('ISOSpeedRating', 'FocalLength', 'ApertureValue', 'ShutterSpeed')");
    while (numbers.step())
        if (const auto number = optionalNumber(numbers, 2))
            values[numbers.integer(0)].numbers.insert_or_assign(text(numbers, 1), *number);
    return values;
}

std::vector<ApertureLibrary::KeywordEntry> ApertureLibrary::keywordEntries()
{
    std::vector<KeywordEntry> entries;
    auto row = library_.kept("SELECT modelId, name, parentId FROM RKKeyword ORDER BY parentId, name");
    while (row.step())
        entries.push_back({row.integer(0), text(row, 1), row.optionalInteger(2)});
    return entries;
}

std::vector<ApertureLibrary::Album> ApertureLibrary::albums()
{
    std::unordered_map<std::int64_t, std::vector<std::int64_t>> members;
    {
        // One pass in the order in which they were put in; asked for album by album, the index would give
        // them in the order of the versions.
        auto row = library_.kept("SELECT albumId, versionId FROM RKAlbumVersion ORDER BY modelId");
        while (row.step())
            members[row.integer(0)].push_back(row.integer(1));
    }
    // Where the user has arranged an album by hand, that is its order.
    // Joined here, as a damaged database may hold a uuid any number of times.
    std::unordered_map<std::string, std::int64_t> versionOf, albumOf;
    readIfThere(library_, "SELECT uuid, modelId FROM RKVersion",
        [&](const Statement& row) { versionOf[text(row, 0)] = row.integer(1); });
    readIfThere(library_, "SELECT uuid, modelId FROM RKAlbum",
        [&](const Statement& row) { albumOf[text(row, 0)] = row.integer(1); });
    std::unordered_map<std::int64_t, std::unordered_map<std::int64_t, std::int64_t>> places;
    readIfThere(library_, "SELECT containerUuid, objectUuid, orderNumber FROM RKCustomSortOrder",
        [&](const Statement& row) {
            const auto album = albumOf.find(text(row, 0));
            const auto version = versionOf.find(text(row, 1));
            if (album != albumOf.end() && version != versionOf.end())
                places[album->second][version->second] = row.integer(2);
        });

    std::vector<Album> albums;
    auto row = library_.kept("SELECT modelId, name, albumSubclass, queryData, folderUuid FROM RKAlbum\n"
                             "WHERE isMagic = 0 AND isInTrash = 0 AND name IS NOT NULL\n"
                             "  AND name != 'Album.implicitAlbum'\n"
                             "ORDER BY name COLLATE NOCASE");
    while (row.step()) {
        const auto id = row.integer(0);
        auto& versions = members[id];
        if (const auto place = places.find(id); place != places.end())
            std::stable_sort(versions.begin(), versions.end(), [&](std::int64_t a, std::int64_t b) {
                const auto at = [&](std::int64_t version) {
                    const auto found = place->second.find(version);
                    return found == place->second.end() ? INT64_MAX : found->second;
                };
                return at(a) < at(b);
            });
        albums.push_back({id, text(row, 1), row.integer(2), std::move(versions),
            row.isNull(3) ? std::nullopt : archived(bytes(row, 3)), optionalText(row, 4)});
    }
    return albums;
}

std::vector<ApertureLibrary::Stack> ApertureLibrary::stacks()
{
    std::map<std::string, std::vector<std::pair<std::int64_t, std::string>>> members;
    auto row = library_.kept("SELECT stackUuid, orderNumber, versionUuid FROM RKStackContent");
    while (row.step())
        if (auto uuid = text(row, 0); !uuid.empty())
            members[std::move(uuid)].emplace_back(row.integer(1), text(row, 2));
    std::map<std::string, std::optional<std::string>> picks;
    auto state
        = library_.kept("SELECT stackUuid, albumPick FROM RKStackState WHERE albumUuid = 'allProjectsAlbum'");
    while (state.step())
        picks[text(state, 0)] = optionalText(state, 1);
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
    {
        auto row = library_.kept("SELECT name, isEnabled, maskUuid, data FROM RKImageAdjustment\n"
                                 "WHERE versionUuid = ? ORDER BY adjIndex, modelId");
        row.bind(versionUuid);
        while (row.step()) {
            adjustments.push_back({text(row, 0), row.integer(1) != 0, optionalText(row, 2), {}});
            archives.emplace_back(bytes(row, 3).text());
        }
    }
    // Decoded without the connection, which other threads wait for.
    for (std::size_t i = 0; i < archives.size(); ++i)
        if (auto root = archived(Bytes(archives[i])); root && root->kind() == BinaryPlist::Value::Kind::dict)
            adjustments[i].parameters = *std::move(root);
    return adjustments;
}

} // namespace korvo
