#include "app/cli/Commands.h"
#include "imports/Naming.h"
#include "imports/NamingPreset.h"
#include "platform/PosixFile.h"

#include <fmt/format.h>

namespace korvo {

namespace {

/// A preset as people write it: the id may be left out.
struct WrittenPreset {
    std::optional<Uuid> id;
    std::string name;
    std::string pattern;
};
KORVO_RECORD(WrittenPreset, id, name, pattern)

void listPresets(Context& context)
{
    for (const auto& preset : NamingPreset::load(context.defaults()))
        context.print(preset, fmt::format("{:<16}{}", preset.name, preset.pattern));
}

struct ExpandArguments {
    std::string pattern;
    PhotoArguments photos;
};

void addExpandArguments(CLI::App& sub, ExpandArguments& arguments)
{
    sub.add_option("PATTERN", arguments.pattern, "text with {name}, {seq}, {date} and {title}")->required();
    addPhotos(sub, arguments.photos);
}

struct NamedPhoto {
    PhotoID id;
    std::string name;
};
KORVO_RECORD(NamedPhoto, id, name)

ExitCode expandPattern(Context& context, const ExpandArguments& arguments)
{
    const auto items = context.library().photosByID(context.photos(arguments.photos));
    for (std::size_t i = 0; i < items.size(); ++i) {
        const NamedPhoto photo{items[i].id, baseName(items[i], arguments.pattern, i + 1, items.size())};
        context.print(photo, photo.name);
    }
    return context.finish(items.size());
}

void setPresets(Context& context, const std::string& file)
{
    std::vector<NamingPreset> presets;
    for (auto& written : fromJson<std::vector<WrittenPreset>>(readWholeFile(file)))
        presets.push_back({written.id ? *written.id : Uuid::random(), written.name, written.pattern});
    NamingPreset::save(presets, context.defaults());
}

} // namespace

void addNamingCommands(const Commands& app)
{
    const auto naming = app.group("naming", "patterns for file names");
    naming.add("list", "the presets", listPresets);
    naming.add<ExpandArguments>(
        "expand", "the names that a pattern gives photos", addExpandArguments, expandPattern);
    naming.add<std::string>(
        "set", "replace the presets by those of a file",
        [](CLI::App& sub, std::string& file) {
            sub.add_option("FILE", file, R"(JSON: [{"name":"Web","pattern":"{name}-web"}, …])")->required();
        },
        setPresets);
    naming.add("restore", "back to the default presets",
        [](Context& context) { NamingPreset::save(NamingPreset::defaults(), context.defaults()); });
}

} // namespace korvo
