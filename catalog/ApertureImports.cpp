#include "catalog/ApertureImports.h"

#include "catalog/Meta.h"
#include "platform/ApertureBundles.h"

namespace korvo {

namespace {

/// Each imported Aperture library has an entry in the library's own key/value store: its identity, and where
/// it lay when it was imported.
constexpr std::string_view importPrefix = "aperture_library:";

std::string importKey(std::string_view identity)
{
    return std::string(importPrefix) + std::string(identity);
}

} // namespace

bool hasImported(Database& database, std::string_view identity)
{
    return readMeta(database, importKey(identity)).has_value();
}

void noteImport(Database& database, std::string_view identity, const std::filesystem::path& bundle)
{
    writeMeta(database, importKey(identity), bundle.native());
}

bool isReadOnlyOriginal(Database& database, std::string_view path)
{
    if (liesInNamedBundle(path))
        return true;
    // The range, for which the index serves: this is asked for each photo whose metadata change.
    auto bundle
        = database.kept("SELECT value || '/' FROM meta WHERE key >= ?1 AND key < ?1 || char(1114111)");
    bundle.bind(importPrefix);
    while (bundle.step())
        if (path.starts_with(bundle.text(0)))
            return true;
    return false;
}

} // namespace korvo
