#include "tests/support/BundleState.h"

#include "platform/Sha256.h"

namespace korvo {

namespace fs = std::filesystem;

std::map<fs::path, std::string> bundleState(const fs::path& folder)
{
    std::map<fs::path, std::string> state;
    const auto add = [&](const fs::path& path) {
        state[path] = std::to_string(fs::last_write_time(path).time_since_epoch().count());
        if (fs::is_regular_file(path))
            state[path] += " " + sha256OfFile(path, {}).value();
    };
    add(folder);
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        add(entry.path());
    return state;
}

} // namespace korvo
