#pragma once

#include "catalog/ImportMemory.h"
#include "imports/ImportedShot.h"
#include "imports/Naming.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace korvo {

/// The name that a file gets.
struct NamedFile {
    std::filesystem::path path;
    bool isThere = false; // with the same contents, of no photo of the library
};

/// The base name, in a folder, of a photo that was imported of the same shot; nothing when there is none.
std::optional<std::string> knownBase(
    Catalog& catalog, const std::filesystem::path& folder, const std::vector<Shot::File>& known);

/// Gives the files of one import their names in the destination. A name is never given twice, and never one
/// that is taken by other contents: "-2", "-3" and so on are tried. What an earlier import put there before
/// it was killed is found again.
class ImportNames {
public:
    using Files = std::span<ImportedFile* const>;

    /// `catalog` must outlive this. `total` is the number of shots.
    ImportNames(Catalog& catalog, std::filesystem::path folder, std::string pattern, std::size_t total)
        : catalog_(catalog), memory_(catalog), folder_(std::move(folder)), pattern_(std::move(pattern)),
          total_(total)
    { }

    /// The names of copied files of one shot, which have the base name in common, also with those of its
    /// photos that were imported before. Throws DatabaseError, and std::system_error when the destination
    /// cannot be looked into.
    std::vector<NamedFile> claim(const NamingFacts& facts, const Shot& shot, Files files);

private:
    using Names = std::optional<std::vector<NamedFile>>;

    Names announced(Files files);
    Names besideKnown(const Shot& shot, Files files);
    Names tryBase(const std::string& base, Files files);
    std::optional<NamedFile> tryName(const std::string& name, const ImportedFile& file);
    bool holdsSame(const std::filesystem::path& path, const ImportedFile& file);

    Catalog& catalog_;
    ImportMemory memory_;
    std::filesystem::path folder_;
    std::string pattern_;
    std::size_t total_;
    std::unordered_set<std::string> claimed_; // folded, since some folders do not tell case
    std::unordered_map<std::string, std::size_t> numbers_; // by base name: the first that may be free
};

} // namespace korvo
