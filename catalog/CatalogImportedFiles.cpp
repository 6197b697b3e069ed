#include "catalog/Catalog.h"
#include "catalog/Meta.h"

namespace korvo {

namespace {

/// What the library remembers of imported files stands in its key/value store: "import|" and the file's key
/// lead to the photo's id, and, while the file is on its way, "importing|" and the path that it is about to
/// have to its key.
std::string metaKey(std::string_view key)
{
    return "import|" + std::string(key);
}

std::string announcedKey(std::string_view path)
{
    return "importing|" + std::string(path);
}

} // namespace

std::vector<std::string> Catalog::importedKeys()
{
    std::vector<std::string> keys;
    // "}" follows "|".
    auto statement
        = database_.kept("SELECT substr(key, 8) FROM meta WHERE key > 'import|' AND key < 'import}' "
                         "AND EXISTS (SELECT 1 FROM photos WHERE id = CAST(value AS INTEGER))");
    while (statement.step())
        keys.emplace_back(statement.text(0));
    return keys;
}

void Catalog::rememberImport(std::string_view key, PhotoID photo)
{
    writeMeta(database_, metaKey(key), std::to_string(photo));
}

void Catalog::announceImport(std::string_view key, std::string_view path)
{
    writeMeta(database_, announcedKey(path), key);
}

std::vector<std::string> Catalog::announcedPaths(std::string_view key)
{
    std::vector<std::string> paths;
    auto statement = database_.kept("SELECT substr(key, 11) FROM meta WHERE key > 'importing|' "
                                    "AND key < 'importing}' AND value = ?");
    statement.bind(key);
    while (statement.step())
        paths.emplace_back(statement.text(0));
    return paths;
}

void Catalog::forgetAnnounced(std::string_view path)
{
    database_.run("DELETE FROM meta WHERE key = ?", announcedKey(path));
}

std::int64_t Catalog::projectAtRoot(std::string_view name)
{
    Transaction transaction(database_);
    auto id = database_.scalar(
        "SELECT id FROM projects WHERE parent_id IS NULL AND name = ? ORDER BY id LIMIT 1", name);
    if (id == 0)
        id = createProject(name, "project", std::nullopt);
    transaction.commit();
    return id;
}

} // namespace korvo
