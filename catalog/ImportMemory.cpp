#include "catalog/ImportMemory.h"

#include "catalog/Meta.h"

#include <charconv>

namespace korvo {

namespace {

/// All of it stands in the library's key/value store: "import|" and the file's key
/// lead to the photo's id, and, while the file is on its way, "importing|" and the path that it is about to
/// have to its key. "importleft|" and the key of a file that is not stored yet lead to the number of its
/// shot, and this to how many there are and where they go:
constexpr auto begunKey = "importbegun";

std::string metaKey(std::string_view key)
{
    return "import|" + std::string(key);
}

std::string announcedKey(std::string_view path)
{
    return "importing|" + std::string(path);
}

std::string leftKey(std::string_view key)
{
    return "importleft|" + std::string(key);
}

} // namespace

std::vector<std::string> ImportMemory::keys() const
{
    std::vector<std::string> keys;
    auto database = catalog_.lookingConnection();
    // "}" follows "|".
    auto statement
        = database.prepare("SELECT substr(key, 8) FROM meta WHERE key > 'import|' AND key < 'import}' "
                           "AND EXISTS (SELECT 1 FROM photos WHERE id = CAST(value AS INTEGER))");
    while (statement.step())
        keys.emplace_back(statement.text(0));
    return keys;
}

void ImportMemory::remember(std::string_view key, PhotoID photo)
{
    writeMeta(database_, metaKey(key), std::to_string(photo));
}

void ImportMemory::announce(std::string_view key, std::string_view path)
{
    writeMeta(database_, announcedKey(path), key);
}

std::vector<std::string> ImportMemory::announcedPaths(std::string_view key)
{
    std::vector<std::string> paths;
    auto statement = database_.kept("SELECT substr(key, 11) FROM meta WHERE key > 'importing|' "
                                    "AND key < 'importing}' AND value = ?");
    statement.bind(key);
    while (statement.step())
        paths.emplace_back(statement.text(0));
    return paths;
}

void ImportMemory::forgetAnnounced(std::string_view path)
{
    runAlone(database_, "DELETE FROM meta WHERE key = ?", announcedKey(path));
}

std::optional<std::string> ImportMemory::path(std::string_view key)
{
    auto statement = database_.kept(
        "SELECT path FROM photos WHERE id = (SELECT CAST(value AS INTEGER) FROM meta WHERE key = ?)");
    const auto remembered = metaKey(key);
    statement.bind(remembered);
    return statement.step() ? std::optional<std::string>(statement.text(0)) : std::nullopt;
}

void ImportMemory::begin(const UnfinishedImport& import)
{
    Transaction transaction(database_);
    database_.run("DELETE FROM meta WHERE key > 'importleft|' AND key < 'importleft}'");
    writeMeta(database_, begunKey, std::to_string(import.shots) + "|" + import.target);
    for (const auto& [key, number] : import.left)
        writeMeta(database_, leftKey(key), std::to_string(number));
    transaction.commit();
}

UnfinishedImport ImportMemory::unfinished()
{
    UnfinishedImport import;
    const auto begun = readMeta(database_, begunKey).value_or("");
    const auto end = begun.find('|');
    if (end == begun.npos)
        return import;
    std::from_chars(begun.data(), begun.data() + end, import.shots);
    import.target = begun.substr(end + 1);
    auto statement = database_.kept("SELECT substr(key, 12), CAST(value AS INTEGER) FROM meta "
                                    "WHERE key > 'importleft|' AND key < 'importleft}'");
    while (statement.step())
        import.left.emplace(statement.text(0), static_cast<std::size_t>(statement.integer(1)));
    return import;
}

void ImportMemory::forgetLeft(std::string_view key)
{
    runAlone(database_, "DELETE FROM meta WHERE key = ?", leftKey(key));
}

} // namespace korvo
