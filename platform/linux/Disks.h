#pragma once

#include "platform/VolumeService.h"
#include "platform/linux/MountTable.h"

#include <cstdint>
#include <string>
#include <vector>

typedef struct _GVariant GVariant;

namespace korvo {

/// A block device as UDisks2 describes it.
struct Disk {
    std::string object; // its name on the bus
    std::uint64_t device = 0; // its number
    std::vector<std::string> nodes; // "/dev/sdb1" and the links to it
    std::string label;
    std::string drive; // the drive's name on the bus; empty without one
    bool removable = false;
    bool ejectable = false;
    bool internal = false;
    bool hidden = false; // of no interest to users, says the system
};

/// The devices in the answer to GetManagedObjects, of the type a{oa{sa{sv}}}. What is missing or of another
/// type is as if it were not said.
std::vector<Disk> disks(GVariant* managedObjects);

/// The device that a mount shows, null for none.
const Disk* diskOf(const Mount& mount, const std::vector<Disk>& disks);

/// The mounts that are volumes: those of disks, each disk once, and of servers.
std::vector<MountedVolume> volumes(const std::vector<Mount>& mounts, const std::vector<Disk>& disks);

} // namespace korvo
