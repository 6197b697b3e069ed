#pragma once

#include "catalog/FileTypes.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// What a scan came upon.
struct ScannedFile {
    std::filesystem::path path; // absolute, of the added folder with its links resolved
    std::filesystem::path added; // the added folder it lies in; empty for a file named by itself
    std::string failure; // why it cannot be taken; empty for a photo
};

/// Walks the given folders, and takes the given files, one photo at a time in an order that depends on the
/// names alone. Hidden files and folders, and what libraries keep for themselves, are passed over, except
/// those named by the user; links to folders are not followed, so that no circle can form. Nothing is opened.
class FolderScan {
public:
    /// Which names are taken.
    using Admits = bool (*)(std::string_view filename);

    explicit FolderScan(std::span<const std::filesystem::path> paths, Admits admits = isLibraryFile);

    /// The next photo, or the next thing that cannot be read; nothing at the end.
    std::optional<ScannedFile> next();

    /// Files passed over so far because their names are not taken.
    std::size_t ignored() const { return ignored_; }

private:
    struct Level {
        std::vector<std::filesystem::directory_entry> entries; // the next one last
    };

    std::optional<ScannedFile> startNextRoot();
    std::optional<ScannedFile> enter(const std::filesystem::path& folder);
    std::optional<ScannedFile> examine(const std::filesystem::directory_entry& entry);

    Admits admits_;
    std::vector<std::filesystem::path> roots_; // the next one last
    std::filesystem::path root_; // the folder being walked
    std::vector<Level> levels_;
    std::size_t ignored_ = 0;
};

} // namespace korvo
