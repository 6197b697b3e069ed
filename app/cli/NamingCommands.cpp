#include "app/cli/Commands.h"
#include "base/PathFailure.h"
#include "imports/Naming.h"
#include "imports/NamingPreset.h"
#include "platform/PosixFile.h"

#include <fmt/format.h>
#include <sstream>

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

/// The presets of a JSON list, or of objects a line, as `naming list --json` writes them.
std::vector<WrittenPreset> writtenPresets(const std::string& text)
{
    const auto begin = text.find_first_not_of(" \t\r\n");
    if (begin == text.npos || text[begin] == '[')
        return fromJson<std::vector<WrittenPreset>>(text);
    std::vector<WrittenPreset> presets;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines >> std::ws, line);)
        presets.push_back(fromJson<WrittenPreset>(line));
    return presets;
}

void setPresets(Context& context, const std::string& file)
try {
    std::vector<NamingPreset> presets;
    for (auto& written : writtenPresets(readWholeFile(file)))
        presets.push_back({written.id ? *written.id : Uuid::random(), written.name, written.pattern});
    NamingPreset::save(presets, context.defaults());
} catch (const JsonError& error) {
    throw std::runtime_error(sentenceOf({file, error.what()}));
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
