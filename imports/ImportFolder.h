#pragma once

#include "platform/PosixFile.h"

#include <filesystem>

namespace korvo {

/// The folder that the copies of an import go to. It is held open: when its drive goes away, the path may
/// lead to a folder of the disk beneath, where copies would be lost from sight.
class ImportFolder {
public:
    /// None: the files stay where they are.
    ImportFolder() = default;
    /// Makes the folder if it is not there, and removes what a killed import left half-written in it. Throws
    /// std::system_error.
    explicit ImportFolder(const std::filesystem::path& folder);

    explicit operator bool() const { return static_cast<bool>(held_); }
    const std::filesystem::path& path() const { return path_; } // canonical

    /// Throws std::system_error when the path no longer leads to the folder.
    void requireThere() const;

private:
    std::filesystem::path path_;
    PosixFile held_;
};

} // namespace korvo
