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

std::optional<BundleDatabase> openProperties(const fs::path& file, const std::stop_token& stop)
{
    try {
        return BundleDatabase(file, stop);
    } catch (const DatabaseError&) {
        return std::nullopt; // the library is of use without it
    }
}

struct FreePlist {
    void operator()(void* list) const { plist_free(list); }
};

} // namespace

ApertureLibrary::ApertureLibrary(fs::path bundle, BundleDatabase library,
    std::optional<BundleDatabase> properties, ApertureVolumes volumes)
    : bundle_(std::move(bundle)), library_(std::move(library)), properties_(std::move(properties)),
      volumes_(std::move(volumes))
{ }

ApertureLibrary ApertureLibrary::open(
    const fs::path& folder, ApertureVolumes volumes, const std::stop_token& stop)
{
    if (!isFile(folder / databaseFolder / "Library.apdb"))
        throw OpenError();
    const auto bundle = fs::canonical(folder);
    return {bundle, BundleDatabase(bundle / databaseFolder / "Library.apdb", stop),
        openProperties(bundle / databaseFolder / "Properties.apdb", stop), std::move(volumes)};
}

std::optional<std::string> ApertureLibrary::versionString() const
{
    const auto file = bundle_ / "Info.plist";
    constexpr std::uintmax_t largest = 1 << 20; // bytes: it says a few words
    std::error_code gone;
    if (!isFile(file) || fs::file_size(file, gone) > largest || gone)
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
    const bool isAbsolute = master.isReferenced && master.imagePath.starts_with('/');
    const auto stored = isAbsolute ? std::optional(fs::path(master.imagePath))
                                   : pathIn(bundle_ / "Masters", master.imagePath);
    if (stored && !master.isMissing && isFile(*stored))
        return {*stored, true};
    if (master.isReferenced && !master.volume.empty()) {
        // Aperture found a file missing when its volume was not there; where the user says it is, it counts.
        const auto found = master.isMissing ? volumes_.findGiven(master.volume, master.imagePath)
                                            : volumes_.find(master.volume, master.imagePath);
        if (found)
            return {*found, true};
    }
    return {stored.value_or(bundle_ / "Masters"), false};
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
