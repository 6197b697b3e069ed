#include "catalog/NewGroups.h"

#include "catalog/ChangeRow.h"

#include <map>

namespace korvo {

std::vector<std::int64_t> createProjects(Database& database, std::span<const NewProject> projects)
{
    std::vector<std::int64_t> ids;
    std::map<std::optional<std::int64_t>, std::int64_t> positions; // the next one below each parent
    Transaction transaction(database);
    for (const auto& [name, kind, parent] : projects) {
        requireName(name);
        const auto [position, isNew] = positions.try_emplace(parent, 0);
        if (isNew) {
            requireProject(database, parent);
            position->second = database.scalar(
                "SELECT COALESCE(MAX(position), 0) + 1 FROM projects WHERE parent_id IS ?", parent);
        }
        ids.push_back(
            database.insert("INSERT INTO projects (name, kind, parent_id, position) VALUES (?, ?, ?, ?)",
                name, kind, parent, position->second++));
    }
    transaction.commit();
    return ids;
}

std::vector<std::int64_t> createAlbums(Database& database, std::span<const NewAlbum> albums)
{
    std::vector<std::int64_t> ids;
    Transaction transaction(database);
    auto position = database.scalar("SELECT COALESCE(MAX(position), 0) + 1 FROM albums");
    for (const auto& [name, parentProject] : albums) {
        requireName(name);
        requireProject(database, parentProject);
        ids.push_back(database.insert("INSERT INTO albums (name, position, parent_id) VALUES (?, ?, ?)", name,
            position++, parentProject));
    }
    transaction.commit();
    return ids;
}

} // namespace korvo
