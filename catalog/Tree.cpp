#include "catalog/Tree.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace korvo {

namespace {

using ChildrenByParent = std::unordered_map<std::int64_t, std::vector<const ProjectRow*>>;
using Counts = std::unordered_map<std::int64_t, std::int64_t>;

ProjectNode node(const ProjectRow& row, const ChildrenByParent& children, const Counts& counts)
{
    const auto count = counts.find(row.id);
    ProjectNode made{row.id, row.name, row.kind, row.parentID, count == counts.end() ? 0 : count->second, {}};
    if (const auto below = children.find(row.id); below != children.end())
        for (const ProjectRow* child : below->second)
            made.children.push_back(node(*child, children, counts));
    return made;
}

} // namespace

std::vector<ProjectNode> projectTree(const std::vector<ProjectRow>& projects,
    const std::vector<std::pair<std::int64_t, std::int64_t>>& countsByProject)
{
    const Counts counts(countsByProject.begin(), countsByProject.end());
    std::unordered_set<std::int64_t> known;
    for (const auto& row : projects)
        known.insert(row.id);
    ChildrenByParent children;
    std::vector<const ProjectRow*> roots;
    for (const auto& row : projects)
        if (row.parentID && known.contains(*row.parentID))
            children[*row.parentID].push_back(&row);
        else
            roots.push_back(&row);
    std::vector<ProjectNode> tree;
    for (const ProjectRow* root : roots)
        tree.push_back(node(*root, children, counts));
    return tree;
}

} // namespace korvo
