#pragma once

#include "catalog/sql/Database.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvo {

/// A project or folder that is to be made.
struct NewProject {
    std::string name;
    std::string kind;
    std::optional<std::int64_t> parent;
};

/// An album that is to be made.
struct NewAlbum {
    std::string name;
    std::optional<std::int64_t> parentProject;
};

/// These make projects or albums in this order behind those that are there, and give their ids. Where they
/// begin is looked up once: for each one anew, thousands would take a time that grows with the square of
/// their number. They throw as Catalog::createProject and createAlbum do, and have then made none.
std::vector<std::int64_t> createProjects(Database& database, std::span<const NewProject> projects);
std::vector<std::int64_t> createAlbums(Database& database, std::span<const NewAlbum> albums);

} // namespace korvo
