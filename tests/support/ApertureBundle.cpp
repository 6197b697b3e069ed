#include "tests/support/ApertureBundle.h"

#include "platform/PosixFile.h"

#include <fmt/format.h>

#include <fstream>

namespace korvo {

namespace fs = std::filesystem;

namespace {

using Plist = PlistDraft;

void write(const fs::path& file, const std::string& contents)
{
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
}

Database makeDatabase(const fs::path& file, const char* schema)
{
    fs::create_directories(file.parent_path());
    Database database(file);
    database.exec("PRAGMA journal_mode = DELETE; PRAGMA synchronous = OFF; PRAGMA page_size = 16384; VACUUM");
    database.exec(readWholeFile(fs::path(KORVO_APERTURE_SCHEMA) / schema));
    database.exec("BEGIN");
    return database;
}

std::span<const std::uint8_t> blob(const std::string& bytes)
{
    return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

/// The indexes that the operations have in a stack of adjustments.
int adjustmentIndex(const std::string& name)
{
    const std::pair<const char*, int> indexes[] = {{"RKRawDecodeOperation", 1'000'000},
        {"RKCropOperation", 7'000'000}, {"RKWhiteBalanceOperation", 9'000'000},
        {"RKExposureOperation", 10'000'000}, {"RKEnhanceOperation", 11'000'000}};
    for (const auto& [operation, index] : indexes)
        if (name == operation)
            return index;
    return 17'000'000;
}

constexpr auto infoPlist = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict><key>CFBundleGetInfoString</key><string>Aperture Library 3.6</string></dict></plist>
)";

} // namespace

ApertureBundle::ApertureBundle(const fs::path& folder)
    : folder_(folder), library_(makeDatabase(folder / "Database/apdb/Library.apdb", "Library.sql")),
      properties_(makeDatabase(folder / "Database/apdb/Properties.apdb", "Properties.sql"))
{
    write(folder / "Info.plist", infoPlist);
    library_.run("INSERT INTO RKAdminData (propertyArea, propertyName, propertyValue) VALUES (?, ?, ?)",
        "database", "databaseUuid", fmt::format("{}+%databaseUuid", folder.filename().string()));
    addFolder("", 1, "", "LibraryFolder");
    addFolder("Projects", 1, "LibraryFolder", "AllProjectsItem");
    addFolder("", 1, "LibraryFolder", "TopLevelAlbums");
    addFolder("", 2, "LibraryFolder", "RKPhotostreamFolder");
    addFolder("Trash", 2, "LibraryFolder", "TrashFolder");
}

std::string ApertureBundle::newUuid()
{
    return fmt::format("k{:08}+%QmZrT2vXwYa0B", ++uuids_);
}

BundleMaster ApertureBundle::add(const BundlePhoto& photo)
{
    BundleMaster master{newUuid(), {}, {}};
    const auto imagePath = photo.imagePath.value_or(photo.folder + "/" + photo.name);
    master.file = folder_ / "Masters" / imagePath;
    if (!photo.imagePath && !photo.contents.empty())
        write(master.file, photo.contents);
    const auto volume = photo.volume.empty() ? "" : newUuid();
    if (!photo.volume.empty())
        library_.run("INSERT INTO RKVolume (uuid, name) VALUES (?, ?)", volume, photo.volume);
    library_.run("INSERT INTO RKMaster (uuid, name, projectUuid, fileVolumeUuid, fileName, type, "
                 "fileIsReference, isMissing, imagePath, imageDate, isInTrash) "
                 "VALUES (?, ?, ?, ?, ?, 'IMGT', ?, ?, ?, ?, 0)",
        master.uuid, photo.name, photo.project, volume, photo.name, photo.imagePath.has_value(),
        photo.isMissing, imagePath, photo.imageDate);
    for (int number = 0; number <= photo.versions; ++number)
        if (auto version = addVersion(photo, imagePath, master, number); number > 0)
            master.versions.push_back(std::move(version));
    return master;
}

BundleVersion ApertureBundle::addVersion(
    const BundlePhoto& photo, const std::string& imagePath, const BundleMaster& master, int number)
{
    const bool isOriginal = number == 0;
    BundleVersion version{newUuid(), 0};
    auto name = photo.versionName.empty() ? fs::path(photo.name).stem().string() : photo.versionName;
    if (number > 1)
        name += fmt::format(" - Version {}", number);
    const bool isAdjusted = !isOriginal && !photo.adjustments.empty();
    version.id = library_.insert(
        "INSERT INTO RKVersion (uuid, name, fileName, versionNumber, masterUuid, projectUuid, imageDate, "
        "mainRating, isFlagged, isOriginal, colorLabelIndex, masterHeight, masterWidth, rotation, "
        "hasAdjustments, hasEnabledAdjustments, isInTrash, exifLatitude, exifLongitude, showInLibrary) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, 1000, 2000, ?, ?, ?, 0, ?, ?, ?)",
        version.uuid, name, photo.name, number, master.uuid, photo.project, photo.imageDate,
        isOriginal ? 0 : photo.rating, !isOriginal && photo.isFlagged, isOriginal,
        isOriginal ? -1 : photo.label, isOriginal ? 0 : photo.rotation, isAdjusted, isAdjusted,
        photo.latitude, photo.longitude, !isOriginal);
    if (isAdjusted)
        for (const auto& adjustment : photo.adjustments)
            addAdjustment(adjustment, version.uuid);
    if (photo.hasPreview && !isOriginal) {
        const auto previews = folder_ / "Previews" / fs::path(imagePath).parent_path() / version.uuid;
        write(previews / ("thumb_" + name + ".jpg"), "thumbnail");
        write(previews / (name + ".jpg"), "preview");
    }
    return version;
}

void ApertureBundle::addAdjustment(const BundleAdjustment& adjustment, const std::string& version)
{
    const auto archive = archiveBytes(plistDict({{"DGOperationIdentifier", Plist(adjustment.name)},
        {"DGOperationVersionNumber", Plist(std::int64_t(0))}, {"enabled", Plist(adjustment.isEnabled)},
        {"inputKeys", plistDict(adjustment.parameters)}}));
    library_.run(
        "INSERT INTO RKImageAdjustment (uuid, name, versionUuid, maskUuid, adjIndex, isEnabled, data) "
        "VALUES (?, ?, ?, ?, ?, ?, ?)",
        newUuid(), adjustment.name, version, adjustment.maskUuid, adjustmentIndex(adjustment.name),
        adjustment.isEnabled, blob(archive));
}

std::string ApertureBundle::addFolder(
    const std::string& name, int type, const std::string& parent, std::string uuid)
{
    if (uuid.empty())
        uuid = newUuid();
    library_.run("INSERT INTO RKFolder (uuid, folderType, name, parentFolderUuid, isInTrash, isMagic) "
                 "VALUES (?, ?, ?, ?, 0, 0)",
        uuid, type, name, parent.empty() ? std::nullopt : std::optional(parent));
    return uuid;
}

std::int64_t ApertureBundle::addKeyword(const std::string& name, std::optional<std::int64_t> parent)
{
    return library_.insert(
        "INSERT INTO RKKeyword (uuid, name, parentId) VALUES (?, ?, ?)", newUuid(), name, parent);
}

void ApertureBundle::assignKeyword(std::int64_t version, std::int64_t keyword)
{
    library_.run("INSERT INTO RKKeywordForVersion (versionId, keywordId) VALUES (?, ?)", version, keyword);
}

std::int64_t ApertureBundle::stringID(const std::string& text)
{
    if (const auto id
        = properties_.scalar("SELECT modelId FROM RKUniqueString WHERE stringProperty = ?", text))
        return id;
    return properties_.insert("INSERT INTO RKUniqueString (stringProperty) VALUES (?)", text);
}

void ApertureBundle::addIptc(std::int64_t version, const std::string& key, const std::string& text)
{
    properties_.run("INSERT INTO RKIptcProperty (versionId, propertyKey, stringId) VALUES (?, ?, ?)", version,
        key, stringID(text));
}

void ApertureBundle::addExif(std::int64_t version, const std::string& key, const std::string& text)
{
    properties_.run("INSERT INTO RKExifStringProperty (versionId, propertyKey, stringId) VALUES (?, ?, ?)",
        version, key, stringID(text));
}

void ApertureBundle::addExif(std::int64_t version, const std::string& key, double number)
{
    properties_.run(
        "INSERT INTO RKExifNumberProperty (versionId, propertyKey, numberProperty) VALUES (?, ?, ?)", version,
        key, number);
}

std::int64_t ApertureBundle::addAlbum(const std::string& name, int subclass,
    const std::vector<std::int64_t>& versions, const std::string& folder, const std::optional<Plist>& query)
{
    const auto data = query ? std::optional(archiveBytes(*query)) : std::nullopt;
    const auto album = library_.insert("INSERT INTO RKAlbum (uuid, albumType, albumSubclass, name, "
                                       "folderUuid, isInTrash, isMagic, queryData) "
                                       "VALUES (?, 1, ?, ?, ?, 0, 0, ?)",
        newUuid(), subclass, name, folder, data ? std::optional(blob(*data)) : std::nullopt);
    for (const auto version : versions)
        library_.run("INSERT INTO RKAlbumVersion (versionId, albumId) VALUES (?, ?)", version, album);
    return album;
}

void ApertureBundle::addStack(
    const std::vector<BundleVersion>& versions, const std::optional<BundleVersion>& pick)
{
    const auto stack = newUuid();
    for (int place = 0; const auto& version : versions)
        library_.run("INSERT INTO RKStackContent (stackUuid, versionUuid, orderNumber) VALUES (?, ?, ?)",
            stack, version.uuid, place++);
    if (pick)
        library_.run("INSERT INTO RKStackState (stackUuid, albumUuid, albumPick, isExpanded) "
                     "VALUES (?, 'allProjectsAlbum', ?, 0)",
            stack, pick->uuid);
}

void ApertureBundle::finish(ApertureBundle bundle)
{
    bundle.library_.exec("COMMIT");
    bundle.properties_.exec("COMMIT");
}

Plist bundleRule(const std::string& key, std::int64_t qualifier, Plist value, bool isEnabled)
{
    return plistDict({{"queryClassName", Plist("RKSingleItemQuery")}, {"queryPropertyKey", Plist(key)},
        {"queryQualifier", Plist(qualifier)}, {"queryFirstValue", std::move(value)},
        {"queryIsEnabled", Plist(isEnabled)}, {"queryTimeValue", Plist(std::int64_t(1))}});
}

Plist bundleQuery(std::vector<Plist> rules, std::int64_t matchType)
{
    std::vector<Plist> all{
        bundleRule("basicProperties.MainRating", 8, Plist(std::int64_t(-1)), matchType == 1),
        bundleRule("isFlagged", 5, Plist(std::int64_t(1)), false),
        bundleRule("properties.any", 23, Plist("text"), false)};
    all.insert(all.end(), std::make_move_iterator(rules.begin()), std::make_move_iterator(rules.end()));
    return plistDict({{"queryClassName", Plist("RKMultiItemQuery")}, {"queryIsEnabled", Plist(true)},
        {"queryMatchType", Plist(matchType)}, {"querySubqueries", Plist(std::move(all))}});
}

} // namespace korvo
