#pragma once

#include <cstdint>
#include <optional>

namespace korvo {

class MainWindow;

// Each asks for a name and makes a line of the sidebar of it, in that project or keyword, or at the top.
// They throw DatabaseError.

void newProject(MainWindow& window, std::optional<std::int64_t> parent);
/// With the photos that commands act on.
void newAlbum(MainWindow& window, std::optional<std::int64_t> project);
void newKeyword(MainWindow& window, std::optional<std::int64_t> parent);

} // namespace korvo
