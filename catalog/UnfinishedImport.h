#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>

namespace korvo {

/// What the import that was begun last has still to do, as the library remembers it.
struct UnfinishedImport {
    std::string target; // where to, and under which names
    std::size_t shots = 0; // in all, those that are stored already too
    std::unordered_map<std::string, std::size_t> left; // the numbers of the shots, by the keys of their files
};

} // namespace korvo
