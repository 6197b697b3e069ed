#pragma once

#include "catalog/Catalog.h"

#include <functional>
#include <string>
#include <vector>

namespace korvo {

/// What a health check found: nothing is wrong when there is no problem.
struct HealthReport {
    std::size_t photos = 0; // masters looked at
    bool stopped = false; // before all were
    std::vector<std::string> problems;
};

/// Looks at the library as a whole: SQLite's own integrity check, references between rows, files that are
/// missing, paths that are not what they should be, and backups. Changes nothing. `progress` is called with
/// the number of masters looked at, and returns whether to go on. Throws DatabaseError when the catalog
/// cannot be read at all.
HealthReport checkHealth(Catalog& catalog, const std::function<bool(std::size_t)>& progress);

} // namespace korvo
