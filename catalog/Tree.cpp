#include "catalog/Tree.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace korvo {

namespace {

using ChildrenByParent = std::unordered_map<std::int64_t, std::vector<const ProjectRow*>>;
using Counts = std::unordered_map<std::int64_t, std::int64_t>;

/// Nests projects, each once, so that circles end.
class Nesting {
public:
    Nesting(const ChildrenByParent& children, const Counts& counts) : children_(children), counts_(counts) { }

    /// The node of a project, if it has none yet.
    std::optional<ProjectNode> node(const ProjectRow& row)
    {
        if (!nested_.insert(row.id).second)
            return std::nullopt;
        const auto count = counts_.find(row.id);
        ProjectNode made{
            row.id, row.name, row.kind, row.parentID, count == counts_.end() ? 0 : count->second, {}};
        if (const auto below = children_.find(row.id); below != children_.end())
            add(below->second, made.children);
        return made;
    }

    void add(const std::vector<const ProjectRow*>& rows, std::vector<ProjectNode>& nodes)
    {
        for (const ProjectRow* row : rows)
            if (auto made = node(*row))
                nodes.push_back(*std::move(made));
    }

private:
    const ChildrenByParent& children_;
    const Counts& counts_;
    std::unordered_set<std::int64_t> nested_;
};

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
    Nesting nesting(children, counts);
    std::vector<ProjectNode> tree;
    nesting.add(roots, tree);
    for (const auto& row : projects) // those of a circle, which nothing leads to
        if (auto made = nesting.node(row))
            tree.push_back(*std::move(made));
    return tree;
}

} // namespace korvo
