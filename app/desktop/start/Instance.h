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

    /// From now on this program has the library's window: `asked` is called when another one wants it, not
    /// before events are handled. Null when another program has it; that one has been told to come forward,
    /// and to add these.
    static std::unique_ptr<Instance> begin(
        const std::filesystem::path& library, const Paths& add, std::function<void(Paths add)> asked);

    ~Instance();

private:
    explicit Instance(std::function<void(Paths add)> asked);

    std::unique_ptr<QLocalServer> server_;
};

} // namespace korvo
