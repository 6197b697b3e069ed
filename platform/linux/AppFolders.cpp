#include "platform/AppFolders.h"

#include <array>
#include <cstdlib>
#include <glib.h>
#include <pwd.h>
#include <stdexcept>
#include <unistd.h>

namespace korvo {

namespace {

namespace fs = std::filesystem;

/// The folder a variable names; empty when it is not set.
fs::path variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

fs::path homeFolder()
{
    if (const auto home = variable("HOME"); home.is_absolute())
        return home;
    std::array<char, 4096> room;
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, room.data(), room.size(), &found) != 0 || !found || !found->pw_dir)
        throw std::runtime_error("The home folder of this user is not known: set $HOME.");
    return found->pw_dir;
}

/// The XDG Base Directory rules, which say that a relative path is to be ignored, behind our own variable.
fs::path appFolder(const char* ownVariable, const char* sharedVariable, const char* belowHome)
{
    if (const auto own = variable(ownVariable); !own.empty())
        return fs::absolute(own);
    const auto shared = variable(sharedVariable);
    return (shared.is_absolute() ? shared : homeFolder() / belowHome) / "korvo";
}

} // namespace

std::filesystem::path applicationDataFolder()
{
    return appFolder("KORVO_DATA", "XDG_DATA_HOME", ".local/share");
}

std::filesystem::path userDefaultsFolder()
{
    return appFolder("KORVO_CONFIG", "XDG_CONFIG_HOME", ".config");
}

std::filesystem::path picturesFolder()
{
    const char* const named = g_get_user_special_dir(G_USER_DIRECTORY_PICTURES);
    return named ? fs::path(named) : homeFolder() / "Pictures";
}

std::filesystem::path shareFolder()
{
    std::error_code unknown; // without /proc there is no such folder
    const auto program = fs::read_symlink("/proc/self/exe", unknown);
    return program.parent_path().parent_path() / "share";
}

} // namespace korvo
