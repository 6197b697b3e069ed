#include "app/cli/Commands.h"
#include "metadata/VolumeWatcher.h"
#include "platform/linux/LinuxVolumes.h"

#include <fmt/format.h>

namespace korvo {

ExitCode volumesCommand(Context& context)
{
    for (const auto& volume : offeredVolumes(LinuxVolumes().mounted())) {
        const auto path = volume.url.string();
        if (!context.options().json) {
            context.print(fmt::format("{}  {}  {}", path, volume.name, volume.isCard ? "card" : "drive"));
            continue;
        }
        JsonWriter json;
        json.beginObject();
        json.member("path", path);
        json.member("name", volume.name);
        json.member("isCard", volume.isCard);
        json.endObject();
        context.print(json.take());
    }
    return ExitCode::done;
}

} // namespace korvo
