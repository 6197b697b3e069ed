#include "aperture/ApertureLibrary.h"

#include "aperture/BundlePaths.h"
#include "base/Text.h"
#include "platform/PosixFile.h"

#include <plist/plist.h>

#include <memory>

namespace korvo {

namespace fs = std::filesystem;

namespace {

constexpr auto databaseFolder = "Database/apdb";

std::optional<Database> openProperties(const fs::path& file)
{
    try {
        auto database = Database::openReadOnly(file);
        database.scalar("SELECT COUNT(*) FROM sqlite_master"); // it is opened at the first use
        return database;
    } catch (const DatabaseError&) {
        return std::nullopt; // the library is of use without it
    }
}

struct FreePlist {
    void operator()(void* list) const { plist_free(list); }
};

} // namespace

ApertureLibrary::ApertureLibrary(
    fs::path bundle, Database library, std::optional<Database> properties, ApertureVolumes volumes)
    : bundle_(std::move(bundle)), library_(std::move(library)), properties_(std::move(properties)),
      volumes_(std::move(volumes))
{ }

ApertureLibrary ApertureLibrary::open(const fs::path& folder, ApertureVolumes volumes)
{
    if (!isFile(folder / databaseFolder / "Library.apdb"))
        throw OpenError();
    const auto bundle = fs::canonical(folder);
    return {bundle, Database::openReadOnly(bundle / databaseFolder / "Library.apdb"),
        openProperties(bundle / databaseFolder / "Properties.apdb"), std::move(volumes)};
}

std::optional<std::string> ApertureLibrary::versionString() const
{
    const auto file = bundle_ / "Info.plist";
    if (!isFile(file))
        return std::nullopt;
    const auto contents = readWholeFile(file);
    plist_t read = nullptr;
    plist_from_memory(contents.data(), static_cast<std::uint32_t>(contents.size()), &read);
    const std::unique_ptr<void, FreePlist> list(read);
    if (!read || plist_get_node_type(read) != PLIST_DICT)
        return std::nullopt;
    const auto entry = plist_dict_get_item(read, "CFBundleGetInfoString");
    const char* const text = entry ? plist_get_string_ptr(entry, nullptr) : nullptr;
    return text ? std::optional<std::string>(text) : std::nullopt;
}

ApertureLibrary::MasterFile ApertureLibrary::masterFile(const Master& master) const
{
    if (master.isReferenced && master.imagePath.starts_with('/'))
        return {master.imagePath, !master.isMissing && isFile(master.imagePath)};
    const auto managed = pathIn(bundle_ / "Masters", master.imagePath);
    if (managed && !master.isMissing && isFile(*managed))
        return {*managed, true};
    if (master.isReferenced && !master.volume.empty()) {
        // Aperture found a file missing when its volume was not there; where the user says it is, it counts.
        const auto found = master.isMissing ? volumes_.findGiven(master.volume, master.imagePath)
                                            : volumes_.find(master.volume, master.imagePath);
        if (found)
            return {*found, true};
    }
    return {managed.value_or(bundle_ / "Masters"), false};
}

std::optional<fs::path> ApertureLibrary::maskFile(const std::string& maskUuid) const
{
    if (!isPlainName(maskUuid))
        return std::nullopt;
    const auto lower = asciiLower(maskUuid);
    const auto file = bundle_ / "Masks" / lower.substr(0, 1) / lower.substr(0, 2) / (maskUuid + ".tiff");
    return isFile(file) ? std::optional(file) : std::nullopt;
}

std::optional<fs::path> ApertureLibrary::previewFile(const Version& version, const Master& master) const
{
    const auto inPreviews = pathIn(bundle_ / "Previews", master.imagePath);
    if (!inPreviews || !isPlainName(version.uuid))
        return std::nullopt;
    const auto folder = inPreviews->parent_path() / version.uuid;
    if (version.name && isPlainName(*version.name) && isFile(folder / (*version.name + ".jpg")))
        return folder / (*version.name + ".jpg");
    std::optional<fs::path> found; // the first by name, so that it is the same one each time
    std::error_code unreadable; // then there is none
    for (fs::directory_iterator entry(folder, unreadable), end; !unreadable && entry != end;
         entry.increment(unreadable)) {
        const auto name = entry->path().filename().native();
        if (name.ends_with(".jpg") && !name.starts_with("thumb_") && (!found || entry->path() < *found))
            found = entry->path();
    }
    return found;
}

} // namespace korvo
