#include "platform/linux/LinuxVolumes.h"

#include "platform/linux/Disks.h"
#include "platform/linux/GlibOwned.h"

#include <algorithm>

namespace korvo {

namespace {

constexpr auto service = "org.freedesktop.UDisks2";
constexpr int patience = 25'000; // milliseconds
constexpr int forAsLongAsItTakes = G_MAXINT; // what a slow card has not written yet may take minutes

[[noreturn]] void fail(VolumeError::Case which, GError* error)
{
    const GlibOwned<GError> owner(error);
    g_dbus_error_strip_remote_error(error);
    if (which == VolumeError::Case::eject)
        throw VolumeError(which, error->message);
    throw VolumeError(
        which, std::string("The system's service for disks (UDisks2) does not answer: ") + error->message);
}

/// A connection to the system's bus for a few questions to UDisks2.
class Bus {
public:
    Bus()
    {
        constexpr auto flags = static_cast<GDBusConnectionFlags>(
            G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        GError* error = nullptr;
        const GlibOwned<char> address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, &error));
        if (address)
            connection_.reset(
                g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, nullptr, &error));
        if (!connection_)
            fail(VolumeError::Case::unavailable, error);
    }

    std::vector<Disk> disks() const
    {
        const auto answer = call(VolumeError::Case::unavailable, "/org/freedesktop/UDisks2",
            "org.freedesktop.DBus.ObjectManager", "GetManagedObjects", nullptr, "(a{oa{sa{sv}}})", patience);
        const GlibOwned<GVariant> objects(g_variant_get_child_value(answer.get(), 0));
        return korvo::disks(objects.get());
    }

    void unmount(const Disk& disk) const
    {
        change(disk.object, "org.freedesktop.UDisks2.Filesystem", "Unmount");
    }

    void eject(const Disk& disk) const { change(disk.drive, "org.freedesktop.UDisks2.Drive", "Eject"); }

private:
    void change(const std::string& object, const char* interface, const char* method) const
    {
        call(VolumeError::Case::eject, object.c_str(), interface, method,
            g_variant_new_parsed("(@a{sv} {},)"), "()", forAsLongAsItTakes);
    }

    GlibOwned<GVariant> call(VolumeError::Case failure, const char* object, const char* interface,
        const char* method, GVariant* arguments, const char* answerType, int timeout) const
    {
        GError* error = nullptr;
        GlibOwned<GVariant> answer(g_dbus_connection_call_sync(connection_.get(), service, object, interface,
            method, arguments, G_VARIANT_TYPE(answerType), G_DBUS_CALL_FLAGS_ALLOW_INTERACTIVE_AUTHORIZATION,
            timeout, nullptr, &error));
        if (!answer)
            fail(failure, error);
        return answer;
    }

    GlibOwned<GDBusConnection> connection_;
};

} // namespace

std::vector<MountedVolume> LinuxVolumes::mounted()
{
    return volumes(readMountTable(), Bus().disks());
}

void LinuxVolumes::eject(const std::filesystem::path& root)
{
    const Bus bus;
    const auto disks = bus.disks();
    const auto mounts = readMountTable();
    const auto diskAt
        = [&](const Mount& mount) { return mount.point == root.native() ? diskOf(mount, disks) : nullptr; };
    const auto found = std::find_if(mounts.rbegin(), mounts.rend(), diskAt);
    if (found == mounts.rend())
        throw VolumeError(VolumeError::Case::eject, root.string() + " is no volume of a disk or a card.");
    const Disk& disk = *diskOf(*found, disks);
    const auto isOnDrive = [&](const Mount& mount) { // a drive lets its medium go when none of it is in use
        const Disk* const part = diskOf(mount, disks);
        return part && (part == &disk || (!disk.drive.empty() && part->drive == disk.drive));
    };
    const auto isOfSystem = [&](const Mount& mount) { return mount.point == "/" && isOnDrive(mount); };
    if (std::any_of(mounts.begin(), mounts.end(), isOfSystem))
        throw VolumeError(VolumeError::Case::eject, "its drive holds the system, too.");
    for (const Mount& mount : mounts)
        if (isOnDrive(mount))
            bus.unmount(*diskOf(mount, disks));
    if (disk.ejectable)
        bus.eject(disk);
}

VolumeService::Watch LinuxVolumes::watch(std::function<void()> changed)
{
    return watchMountTable(std::move(changed));
}

} // namespace korvo
