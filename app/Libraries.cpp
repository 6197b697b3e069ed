#include "app/Libraries.h"

#include "base/Text.h"
#include "platform/AppFolders.h"

#include <algorithm>
#include <system_error>

namespace korvo {

namespace {

constexpr auto lastKey = "korvo_last_library_path";
constexpr auto recentKey = "korvo_recent_libraries";
constexpr std::size_t recentKept = 10;
constexpr char separator = '\0'; // the one byte that no path holds

/// Those that cannot be seen now stay in the list: their disk may be away for a day.
void remember(const std::filesystem::path& folder, Defaults& defaults)
{
    auto recent = rememberedLibraries(defaults);
    std::erase(recent, folder);
    recent.insert(recent.begin(), folder);
    recent.resize(std::min(recent.size(), recentKept));
    std::string list;
    for (const auto& path : recent)
        list += path.native() + separator;
    defaults.setIfOther(recentKey, list);
    defaults.setIfOther(lastKey, folder.native());
}

} // namespace

bool holdsCatalog(const std::filesystem::path& folder)
{
    std::error_code ignored; // a folder that cannot be looked into holds none for us
    return !folder.empty() && std::filesystem::exists(folder / "catalog.sqlite", ignored);
}

std::optional<std::filesystem::path> lastLibrary(const Defaults& defaults)
{
    const auto stored = defaults.get(lastKey);
    return stored && holdsCatalog(*stored) ? std::optional<std::filesystem::path>(*stored) : std::nullopt;
}

std::optional<std::filesystem::path> missingLibrary(const Defaults& defaults)
{
    const auto stored = defaults.get(lastKey);
    const bool isMissing = stored && !stored->empty() && !holdsCatalog(*stored);
    return isMissing ? std::optional<std::filesystem::path>(*stored) : std::nullopt;
}

std::vector<std::filesystem::path> rememberedLibraries(const Defaults& defaults)
{
    const auto stored = defaults.get(recentKey).value_or("");
    std::vector<std::filesystem::path> libraries;
    for (const auto path : split(stored, separator))
        if (!path.empty())
            libraries.emplace_back(path);
    return libraries;
}

std::vector<std::filesystem::path> recentLibraries(const Defaults& defaults)
{
    auto libraries = rememberedLibraries(defaults);
    std::erase_if(libraries, [](const auto& folder) { return !holdsCatalog(folder); });
    return libraries;
}

AwayTexts awayTexts(const std::filesystem::path& library)
{
    const auto name = library.has_filename() ? library.filename() : library.parent_path().filename();
    return {"The library " + name.string() + " is not there.",
        "It was last opened at " + library.string()
            + ". If that is on a disk that is not connected, connect it and try again."};
}

std::filesystem::path usualLibrary()
{
    return picturesFolder() / "Korvo Library";
}

std::unique_ptr<Catalog> openLibrary(
    const std::filesystem::path& folder, const Clock& clock, Defaults& defaults)
{
    auto catalog = std::make_unique<Catalog>(folder, clock);
    rememberLibrary(*catalog, defaults);
    return catalog;
}

void rememberLibrary(const Catalog& catalog, Defaults& defaults)
{
    try {
        remember(catalog.libraryURL(), defaults);
    } catch (const std::system_error&) {
        // Without a place for preferences the library is only not found by itself at the next start.
    }
}

UnfinishedLibrary::UnfinishedLibrary(const std::filesystem::path& folder)
{
    const bool isNew = !std::filesystem::exists(folder);
    for (const char* name :
        {"catalog.sqlite", "catalog.sqlite-wal", "catalog.sqlite-shm", "Previews", "Backups"})
        if (!std::filesystem::exists(folder / name))
            made_.push_back(folder / name);
    if (isNew)
        made_.push_back(folder);
}

UnfinishedLibrary::~UnfinishedLibrary()
{
    std::error_code ignored; // the error that ended the making is the one to report
    for (const auto& path : made_)
        std::filesystem::remove_all(path, ignored);
}

} // namespace korvo
