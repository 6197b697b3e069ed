#include "catalog/Catalog.h"
#include "catalog/Meta.h"

namespace korvo {

namespace {

/// What the library remembers of imported files stands in its key/value store: the value is the photo's id,
/// or, while the file is on its way, the path it is about to have.
std::string metaKey(std::string_view key)
{
    return "import|" + std::string(key);
}

} // namespace

std::vector<std::string> Catalog::importedKeys()
{
    std::vector<std::string> keys;
    // "}" follows "|"; a path is the number 0.
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
    writeMeta(database_, metaKey(key), path);
}

void Catalog::forgetImport(std::string_view key)
{
    database_.run("DELETE FROM meta WHERE key = ?", metaKey(key));
}

std::optional<std::string> Catalog::announcedImport(std::string_view key)
{
    auto value = readMeta(database_, metaKey(key));
    return value && value->starts_with('/') ? value : std::nullopt;
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
