#pragma once

#include "catalog/Database.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvo {

/// An album that is to be made.
struct NewAlbum {
    std::string name;
    std::optional<std::int64_t> parentProject;
};

/// Makes albums in this order behind those that are there, and gives their ids. Where they begin is looked up
/// once: for each album anew, thousands would take a time that grows with the square of their number. Throws
/// as Catalog::createAlbum does, and has then made none.
std::vector<std::int64_t> createAlbums(Database& database, std::span<const NewAlbum> albums);

} // namespace korvo
