#include "catalog/MovedLibrary.h"

#include "catalog/Meta.h"

#include <string>

namespace korvo {

namespace {

/// A path is inside a folder when it continues with a separator: "/a/Lib" does not hold "/a/Lib2/x.jpg".
void moveInside(Database& database, const char* select, const char* update, const std::string& from,
    const std::string& to)
{
    std::vector<std::pair<std::int64_t, std::string>> moved;
    auto rows = database.prepare(select);
    while (rows.step()) {
        const auto path = rows.text(1);
        if (path == from || (path.starts_with(from) && path[from.size()] == '/'))
            moved.emplace_back(rows.integer(0), to + std::string(path.substr(from.size())));
    }
    for (const auto& [id, path] : moved)
        database.run(update, path, id);
}

} // namespace

void repairMovedPaths(Database& database, const std::filesystem::path& libraryFolder)
{
    const auto current = libraryFolder.string();
    createMeta(database);
    const auto stored = readMeta(database, "library_path");
    if (stored == current)
        return;
    Transaction transaction(database);
    // A path that has a row already keeps it: a duplicate must not make the library impossible to open.
    if (stored) {
        moveInside(database, "SELECT id, path FROM folders",
            "UPDATE OR IGNORE folders SET path = ? WHERE id = ?", *stored, current);
        moveInside(database, "SELECT id, path FROM photos",
            "UPDATE OR IGNORE photos SET path = ? WHERE id = ?", *stored, current);
    }
    writeMeta(database, "library_path", current);
    transaction.commit();
}

} // namespace korvo
