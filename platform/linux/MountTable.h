#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// A line of the kernel's table of mounts, see proc(5).
struct Mount {
    std::uint64_t device = 0; // its number
    std::string root; // what of the file system is mounted: "/" for all of it
    std::string point; // where
    std::string kind; // "vfat", "nfs4"
    std::string source; // "/dev/sdb1", "server:/photos"

    friend bool operator==(const Mount&, const Mount&) = default;
};

/// Reads the text of /proc/self/mountinfo; lines that are no mount are left out.
std::vector<Mount> parseMountTable(std::string_view text);

/// The mounts of this process. Throws std::system_error.
std::vector<Mount> readMountTable();

/// Calls `changed`, on a thread of its own, whenever the kernel says that the table has changed, until the
/// result goes. Throws std::system_error.
std::shared_ptr<void> watchMountTable(std::function<void()> changed);

} // namespace korvo
