#include "tests/platform/DiskService.h"

#include <gio/gio.h>
#include <sys/mount.h>

#include <future>

namespace korvo {

namespace {

constexpr auto interfaces = R"(<node>
<interface name="org.freedesktop.DBus.ObjectManager"><method name="GetManagedObjects">
  <arg type="a{oa{sa{sv}}}" direction="out"/></method></interface>
<interface name="org.freedesktop.UDisks2.Filesystem"><method name="Unmount">
  <arg type="a{sv}" direction="in"/></method></interface>
<interface name="org.freedesktop.UDisks2.Drive"><method name="Eject">
  <arg type="a{sv}" direction="in"/></method></interface>
</node>)";

constexpr auto cardObjects = R"(({
  objectpath '/drive': {'org.freedesktop.UDisks2.Drive': {'Removable': <true>, 'Ejectable': <true>}},
  '/card': {'org.freedesktop.UDisks2.Block': {'DeviceNumber': <%t>, 'IdLabel': <'EOS_DIGITAL'>,
    'Drive': <objectpath '/drive'>}}},))";

void handleCall(GDBusConnection*, const char*, const char*, const char*, const char* method, GVariant*,
    GDBusMethodInvocation* invocation, void* self)
{
    const auto answer = static_cast<DiskService*>(self)->answer(method);
    if (answer.error.empty())
        g_dbus_method_invocation_return_value(invocation, answer.value);
    else
        g_dbus_method_invocation_return_dbus_error(
            invocation, "org.freedesktop.UDisks2.Error.DeviceBusy", answer.error.c_str());
}

} // namespace

DiskService::DiskService()
    : bus_(g_test_dbus_new(G_TEST_DBUS_NONE)), context_(g_main_context_new()),
      loop_(g_main_loop_new(context_, FALSE))
{
    g_test_dbus_up(bus_);
    std::promise<void> ready;
    thread_ = std::thread([this, &ready] {
        g_main_context_push_thread_default(context_);
        constexpr auto flags = static_cast<GDBusConnectionFlags>(
            G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        auto* const connection = g_dbus_connection_new_for_address_sync(
            g_test_dbus_get_bus_address(bus_), flags, nullptr, nullptr, nullptr);
        auto* const node = g_dbus_node_info_new_for_xml(interfaces, nullptr);
        const GDBusInterfaceVTable table{
            .method_call = handleCall, .get_property = {}, .set_property = {}, .padding = {}};
        const char* const objects[] = {"/org/freedesktop/UDisks2", "/card", "/drive"};
        for (int i = 0; i < 3; ++i)
            g_dbus_connection_register_object(
                connection, objects[i], node->interfaces[i], &table, this, nullptr, nullptr);
        g_variant_unref(
            g_dbus_connection_call_sync(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                "org.freedesktop.DBus", "RequestName", g_variant_new("(su)", "org.freedesktop.UDisks2", 0),
                nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        ready.set_value();
        g_main_loop_run(loop_);
        g_dbus_node_info_unref(node);
        g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_object_unref(connection);
        g_main_context_pop_thread_default(context_);
    });
    ready.get_future().wait();
}

DiskService::~DiskService()
{
    g_main_loop_quit(loop_);
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
    g_test_dbus_stop(bus_);
    g_object_unref(bus_);
}

std::string DiskService::address() const
{
    return g_test_dbus_get_bus_address(bus_);
}

void DiskService::showCard(dev_t device, const std::filesystem::path& root)
{
    const std::lock_guard lock(mutex_);
    device_ = device;
    root_ = root;
}

void DiskService::refuse(const std::string& message)
{
    const std::lock_guard lock(mutex_);
    refusal_ = message;
}

std::vector<std::string> DiskService::calls() const
{
    const std::lock_guard lock(mutex_);
    return calls_;
}

DiskService::Answer DiskService::answer(const std::string& method)
{
    const std::lock_guard lock(mutex_);
    if (method == "GetManagedObjects")
        return {g_variant_new_parsed(cardObjects, static_cast<guint64>(device_)), {}};
    if (!refusal_.empty())
        return {nullptr, refusal_};
    calls_.push_back(method);
    if (method == "Unmount" && umount(root_.c_str()) != 0)
        return {nullptr, "it is not mounted"};
    return {};
}

} // namespace korvo
