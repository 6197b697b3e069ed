#include "app/cli/Commands.h"
#include "imports/Naming.h"
#include "imports/NamingPreset.h"
#include "platform/PosixFile.h"

#include <fmt/format.h>

#include <fstream>
#include <iterator>

namespace korvo {

namespace {

/// A preset as people write it: the id may be left out.
struct WrittenPreset {
    std::optional<Uuid> id;
    std::string name;
    std::string pattern;
};
KORVO_RECORD(WrittenPreset, id, name, pattern)

std::string contentsOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::string contents(std::istreambuf_iterator<char>(stream), {});
    if (!stream.is_open() || stream.bad())
        throwFileError("read", file);
    return contents;
}

} // namespace

ExitCode listNamingCommand(Context& context)
{
    for (const auto& preset : NamingPreset::load(context.defaults()))
        context.print(
            context.options().json ? toJson(preset) : fmt::format("{:<16}{}", preset.name, preset.pattern));
    return ExitCode::done;
}

ExitCode expandNamingCommand(Context& context, const std::string& pattern, const PhotoArguments& photos)
{
    const auto items = context.library().photosByID(context.photos(photos));
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto name = baseName(items[i], pattern, i + 1, items.size());
        if (!context.options().json) {
            context.print(name);
            continue;
        }
        JsonWriter json;
        json.beginObject();
        json.member("id", items[i].id);
        json.member("name", name);
        json.endObject();
        context.print(json.take());
    }
    return context.finish(items.size());
}

ExitCode setNamingCommand(Context& context, const std::filesystem::path& file)
{
    std::vector<NamingPreset> presets;
    for (auto& written : fromJson<std::vector<WrittenPreset>>(contentsOf(file)))
        presets.push_back({written.id ? *written.id : Uuid::random(), written.name, written.pattern});
    NamingPreset::save(presets, context.defaults());
    return ExitCode::done;
}

ExitCode restoreNamingCommand(Context& context)
{
    NamingPreset::save(NamingPreset::defaults(), context.defaults());
    return ExitCode::done;
}

} // namespace korvo
