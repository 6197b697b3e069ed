#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace korvo {

/// An empty folder that goes, with everything in it, at the end of the test.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

    /// Writes a file, making the folders above it, and returns its path.
    std::filesystem::path write(const std::filesystem::path& name, std::string_view contents) const;

private:
    std::filesystem::path path_;
};

/// The whole contents of a file.
std::string readFile(const std::filesystem::path& file);

} // namespace korvo
