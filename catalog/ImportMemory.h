#pragma once

#include "catalog/Catalog.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvo {

/// What the import that was begun last has still to do, as the library remembers it.
struct UnfinishedImport {
    std::string target; // where to, and under which names
    std::size_t shots = 0; // in all, those that are stored already too
    std::unordered_map<std::string, std::size_t> left; // the numbers of the shots, by the keys of their files
};

/// What a library remembers of the files that were imported into it, and of an import that did not come to
/// its end. A key is a file's name and size as its source had them.
class ImportMemory {
public:
    /// The catalog must outlive this.
    explicit ImportMemory(Catalog& catalog) : catalog_(catalog), database_(catalog.database()) { }

    /// The keys of the files that were imported and whose photos the library still holds.
    std::vector<std::string> keys() const;
    void remember(std::string_view key, PhotoID photo);
    /// The path of the photo that was imported from such a file.
    std::optional<std::string> path(std::string_view key);

    /// Says beforehand which path a file is about to have, so that an import that is killed then finds it
    /// again.
    void announce(std::string_view key, std::string_view path);
    std::vector<std::string> announcedPaths(std::string_view key);
    /// Takes back what was announced: the file has been stored, or does not stand there.
    void forgetAnnounced(std::string_view path);

    /// Notes what an import is about to do, in place of what an earlier one left.
    void begin(const UnfinishedImport& import);
    /// What is left of the import that was noted last; nothing when all of it is stored.
    UnfinishedImport unfinished();
    /// A file that was left is stored now.
    void forgetLeft(std::string_view key);

private:
    Catalog& catalog_;
    Database& database_;
};

} // namespace korvo
