#pragma once

#include "catalog/Catalog.h"
#include "platform/FileSource.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// One importable file of a source.
struct Candidate {
    SourceFile file;
    bool isDuplicate = false; // the library holds a file of this name and size, or has imported one
    bool picked = true;
    std::size_t twins = 0; // files before it in the listing that have its name and size
};

/// What a source holds.
struct ImportListing {
    std::vector<Candidate> candidates;
    std::vector<SourceFile> sidecars; // ".xmp" files: no photos, but they go where theirs go
    std::vector<PathFailure> failures;
    bool isWhole = true; // not cut short by a stop
};

/// Lists a source and marks what the library has already. Of several files of one name and size those that
/// the last import left are no duplicates. Throws SourceError and DatabaseError.
ImportListing listImportable(FileSource& source, Catalog& catalog, const std::stop_token& stop);

enum class Duplicates { leaveOut, take };

/// Picks all candidates, or all but the duplicates.
void pick(std::vector<Candidate>& candidates, Duplicates duplicates);

/// By what files are told from each other: the name in lower case, "|", and the size in bytes.
std::string duplicateKey(std::string_view filename, std::uint64_t size);
std::string duplicateKey(const SourceFile& file);

/// The same, and which of those before it in the listing have its key.
std::string keyAmongTwins(const Candidate& candidate);

/// What an import does, fixed when it starts.
struct ImportPlan {
    std::vector<Candidate> files; // the picked candidates
    std::vector<SourceFile> known; // duplicates that are left out
    std::vector<SourceFile> sidecars; // of the source; those of the files go with them
    std::optional<std::filesystem::path> copyTo; // none: the files stay and are referenced
    std::optional<std::filesystem::path> card; // that the files come from; copies must not go onto it
    std::string namingPattern = "{name}"; // of copies
    bool byDay = false; // one project per day
    std::optional<std::int64_t> project; // one that there is
    std::string newProject; // the name of one that is made when the first photo goes into it; or empty
    std::string creator, copyright, keywords; // empty: as the files have them
    bool eject = false;
};

/// A plan for the picked candidates of a listing, all else as it is at first.
ImportPlan planFor(const ImportListing& listing);

} // namespace korvo
