#include "platform/linux/Disks.h"

#include "platform/linux/GlibOwned.h"

#include <algorithm>
#include <array>
#include <set>

namespace korvo {

namespace {

constexpr std::array<std::string_view, 10> serverKinds = {"nfs", "nfs4", "cifs", "smb3", "afs", "ceph",
    "fuse.sshfs", "fuse.rclone", "fuse.davfs", "fuse.glusterfs"};

using Variant = GlibOwned<GVariant>;

/// The properties of one interface of an object, an a{sv}; none for an object that there is not.
class Properties {
public:
    Properties(GVariant* object, const char* interface)
        : values_(object ? g_variant_lookup_value(object, interface, G_VARIANT_TYPE_VARDICT) : nullptr)
    { }

    explicit operator bool() const { return values_ != nullptr; }

    bool flag(const char* name) const
    {
        const auto value = find(name, G_VARIANT_TYPE_BOOLEAN);
        return value && g_variant_get_boolean(value.get());
    }

    std::uint64_t number(const char* name) const
    {
        const auto value = find(name, G_VARIANT_TYPE_UINT64);
        return value ? g_variant_get_uint64(value.get()) : 0;
    }

    std::string text(const char* name) const
    {
        const auto value = find(name, G_VARIANT_TYPE_STRING);
        return value ? g_variant_get_string(value.get(), nullptr) : "";
    }

    /// Another object's name, empty for "/", which stands for none.
    std::string object(const char* name) const
    {
        const auto value = find(name, G_VARIANT_TYPE_OBJECT_PATH);
        const std::string path = value ? g_variant_get_string(value.get(), nullptr) : "";
        return path == "/" ? "" : path;
    }

    std::string path(const char* name) const
    {
        const auto value = find(name, G_VARIANT_TYPE_BYTESTRING);
        return value ? g_variant_get_bytestring(value.get()) : "";
    }

    std::vector<std::string> paths(const char* name) const
    {
        std::vector<std::string> all;
        if (const auto value = find(name, G_VARIANT_TYPE_BYTESTRING_ARRAY))
            for (gsize i = 0; i < g_variant_n_children(value.get()); ++i) {
                const Variant child(g_variant_get_child_value(value.get(), i));
                all.emplace_back(g_variant_get_bytestring(child.get()));
            }
        return all;
    }

private:
    Variant find(const char* name, const GVariantType* type) const
    {
        return Variant(values_ ? g_variant_lookup_value(values_.get(), name, type) : nullptr);
    }

    Variant values_;
};

Properties properties(GVariant* managedObjects, const std::string& object, const char* interface)
{
    const Variant interfaces(
        g_variant_lookup_value(managedObjects, object.c_str(), G_VARIANT_TYPE("a{sa{sv}}")));
    return {interfaces.get(), interface};
}

constexpr auto blockInterface = "org.freedesktop.UDisks2.Block";

/// An opened encrypted device has no drive of its own but the one behind it.
std::string driveOf(const Properties& block, GVariant* managedObjects)
{
    const auto drive = block.object("Drive");
    const auto behind = block.object("CryptoBackingDevice");
    return drive.empty() && !behind.empty()
        ? properties(managedObjects, behind, blockInterface).object("Drive")
        : drive;
}

Disk disk(std::string object, const Properties& block, GVariant* managedObjects)
{
    Disk disk;
    disk.object = std::move(object);
    disk.device = block.number("DeviceNumber");
    disk.nodes = block.paths("Symlinks");
    disk.nodes.push_back(block.path("Device"));
    disk.label = block.text("IdLabel");
    disk.internal = block.flag("HintSystem");
    disk.hidden = block.flag("HintIgnore");
    disk.drive = driveOf(block, managedObjects);
    const auto drive = properties(managedObjects, disk.drive, "org.freedesktop.UDisks2.Drive");
    disk.removable = drive.flag("Removable") || drive.flag("MediaRemovable");
    disk.ejectable = drive.flag("Ejectable");
    return disk;
}

bool isServer(const Mount& mount)
{
    return std::find(serverKinds.begin(), serverKinds.end(), mount.kind) != serverKinds.end();
}

/// Mounts that later ones cover at the same place are left out.
std::vector<Mount> visible(const std::vector<Mount>& mounts)
{
    std::vector<Mount> result;
    for (const auto& mount : mounts) {
        std::erase_if(result, [&](const Mount& other) { return other.point == mount.point; });
        result.push_back(mount);
    }
    return result;
}

} // namespace

std::vector<Disk> disks(GVariant* managedObjects)
{
    std::vector<Disk> all;
    GVariantIter objects;
    g_variant_iter_init(&objects, managedObjects);
    const char* name = nullptr;
    GVariant* interfaces = nullptr;
    while (g_variant_iter_loop(&objects, "{&o@a{sa{sv}}}", &name, &interfaces))
        if (const Properties block(interfaces, blockInterface); block)
            all.push_back(disk(name, block, managedObjects));
    return all;
}

const Disk* diskOf(const Mount& mount, const std::vector<Disk>& disks)
{
    const auto found = std::find_if(disks.begin(), disks.end(), [&](const Disk& disk) {
        return disk.device == mount.device // except for file systems that number their parts themselves
            || std::find(disk.nodes.begin(), disk.nodes.end(), mount.source) != disk.nodes.end();
    });
    return found == disks.end() ? nullptr : &*found;
}

std::vector<MountedVolume> volumes(const std::vector<Mount>& mounts, const std::vector<Disk>& disks)
{
    std::vector<MountedVolume> result;
    std::set<std::string> seen; // by the device's node or the server's folder
    const auto shown = visible(mounts);
    const auto system
        = std::find_if(shown.begin(), shown.end(), [](const Mount& mount) { return mount.point == "/"; });
    if (system != shown.end() && seen.insert(system->source).second)
        result.push_back({.root = "/", .internal = true, .holdsSystem = true});
    for (const auto& mount : shown) {
        const auto* const disk = diskOf(mount, disks);
        const bool isVolume = disk ? !disk->hidden : isServer(mount);
        if (!isVolume || !seen.insert(mount.source).second)
            continue;
        result.push_back(disk
                ? MountedVolume{mount.point, disk->label, disk->removable, disk->ejectable, disk->internal}
                : MountedVolume{.root = mount.point});
    }
    return result;
}

} // namespace korvo
