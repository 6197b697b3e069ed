#include "metadata/ApertureFolders.h"

#include "base/Text.h"

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// By its name, which also stands for one whose disk is away or whose database is, or by what it holds.
bool isLibrary(const fs::path& folder)
{
    std::error_code unreadable; // what cannot be looked at cannot be written either
    const auto ending = asciiLower(folder.extension().native());
    return ending == ".aplibrary" || ending == ".migratedaplibrary"
        || fs::exists(folder / "Database/apdb/Library.apdb", unreadable);
}

bool liesInLibrary(const fs::path& folder)
{
    return isLibrary(folder) || (folder.has_relative_path() && liesInLibrary(folder.parent_path()));
}

} // namespace

bool ApertureFolders::hold(const fs::path& file)
{
    std::error_code unresolved; // a file that is gone is not written either way
    return isInside(file.parent_path())
        || (fs::is_symlink(file, unresolved)
            && isInside(fs::weakly_canonical(file, unresolved).parent_path()));
}

bool ApertureFolders::isInside(const fs::path& folder)
{
    const auto [entry, isNew] = known_.try_emplace(folder.native(), false);
    std::error_code unresolved;
    if (isNew)
        entry->second = liesInLibrary(folder) || liesInLibrary(fs::weakly_canonical(folder, unresolved));
    return entry->second;
}

} // namespace korvo
