#include "platform/ApertureBundles.h"

#include "base/Text.h"

#include <algorithm>

namespace korvo {

namespace fs = std::filesystem;

namespace {

bool hasBundleName(std::string_view folder)
{
    const auto name = asciiLower(folder);
    return name.ends_with(".aplibrary") || name.ends_with(".migratedaplibrary");
}

/// By its name, which also stands for one whose disk is away or whose database is, or by what it holds.
bool isBundle(const fs::path& folder)
{
    std::error_code unreadable; // what cannot be looked at cannot be written either
    return hasBundleName(folder.filename().native())
        || fs::exists(folder / "Database/apdb/Library.apdb", unreadable);
}

bool liesInBundle(const fs::path& folder)
{
    return isBundle(folder) || (folder.has_relative_path() && liesInBundle(folder.parent_path()));
}

} // namespace

bool liesInNamedBundle(std::string_view path)
{
    return std::ranges::any_of(split(path.substr(0, path.rfind('/')), '/'), hasBundleName);
}

bool ApertureBundles::hold(const fs::path& file)
{
    std::error_code unresolved; // a file that is gone is not written either way
    return isInside(file.parent_path())
        || (fs::is_symlink(file, unresolved)
            && isInside(fs::weakly_canonical(file, unresolved).parent_path()));
}

bool ApertureBundles::isInside(const fs::path& folder)
{
    const auto [entry, isNew] = known_.try_emplace(folder.native(), false);
    std::error_code unresolved;
    if (isNew)
        entry->second = liesInBundle(folder) || liesInBundle(fs::weakly_canonical(folder, unresolved));
    return entry->second;
}

} // namespace korvo
