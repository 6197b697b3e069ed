#pragma once

#include "base/Bytes.h"
#include "platform/PosixFile.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace korvo {

/// The unfinished form of a file: it stands beside its target, and so on the same file system, with ".part"
/// behind the name. It goes with this object unless it was installed. It is locked while it is written, by
/// which the one that a killed process left behind can be told from the one that a living process is writing.
class PartFile {
public:
    /// Begins an empty part file in a folder that is there; nothing when another process is writing it. Where
    /// that cannot be told, or the name is not ours to use, it gets a name that nobody else has. Throws
    /// std::system_error.
    static std::optional<PartFile> begin(const std::filesystem::path& target);

    /// Begins one of a name made up just now, which nobody else writes: it begins with `start`, of a hidden
    /// file, and ends with `ending`. To be moved to where it is to stand. Throws std::system_error.
    static PartFile beginHidden(
        const std::filesystem::path& folder, std::string_view start, std::string_view ending = {});

    /// Removes the part files that no process is writing, of all targets whose paths begin so. What cannot be
    /// removed stays.
    static void removeLeftOvers(const std::filesystem::path& start);

    PartFile(PartFile&&) noexcept = default;
    PartFile& operator=(PartFile&& other) noexcept;
    ~PartFile();

    const std::filesystem::path& path() const { return path_; }
    const PosixFile& file() const { return file_; }

    /// Adds to the end. Throws std::system_error.
    void write(Bytes bytes) const;

    /// Waits until all that was written is safe on the disk, which may take seconds. Throws
    /// std::system_error.
    void sync() const;

    /// Moves the file, safe on the disk, to the target in one step, replacing a file that is there. Throws
    /// std::system_error; then the target is as it was, unless all that failed was waiting until its new name
    /// is safe from a power cut.
    void install() { moveOver(target_); }

    /// The same with another target of the same file system.
    void moveOver(const std::filesystem::path& target);

    /// Moves the file, as it is, to a name beside it that nothing has; false, and it stays, when something
    /// has. Throws std::system_error.
    bool moveTo(const std::filesystem::path& freeName);

private:
    PartFile(std::filesystem::path target, std::filesystem::path path, PosixFile file);
    static PartFile ofOwnName(const std::filesystem::path& target);

    std::filesystem::path target_;
    std::filesystem::path path_;
    PosixFile file_; // without one once installed, or moved from
};

/// Replaces the contents of a small file by way of its part file, making the folders above it. Waits for
/// others who do the same, for seconds at the most. Throws std::system_error.
void replaceFile(const std::filesystem::path& file, std::string_view contents);

} // namespace korvo
