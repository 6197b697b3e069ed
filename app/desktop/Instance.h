#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

class QLocalServer;

namespace korvo {

/// Keeps one window to a library: a second start brings the first one forward instead.
class Instance {
public:
    using Paths = std::vector<std::filesystem::path>;

    /// Whether a window of the library was there and has been told to come forward, and to add these.
    static bool bringForward(const std::filesystem::path& library, const Paths& add = {});

    /// From now on this program has the library's window. `asked` is called when another one wants it.
    Instance(const std::filesystem::path& library, std::function<void(Paths add)> asked);
    ~Instance();

private:
    std::unique_ptr<QLocalServer> server_;
};

} // namespace korvo
