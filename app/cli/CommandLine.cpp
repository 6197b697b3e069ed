#include "app/cli/CommandLine.h"

#include "app/cli/Commands.h"
#include "app/cli/Parser.h"
#include "base/Text.h"

#include <algorithm>
#include <cstdio>
#include <fmt/ranges.h>

namespace korvo {

void addPhotos(CLI::App& sub, PhotoArguments& photos)
{
    sub.add_option("ID", photos.ids, "photo ids, or - for ids from standard input");
    sub.add_option("--source", photos.source,
        "all photos of a source: all, folder:ID, album:ID, smart:ID, project:ID, flagged, …");
    sub.final_callback([&photos] {
        if (photos.ids.empty() && photos.source.empty())
            throw CLI::RequiredError("ID or --source");
    });
}

namespace {

void addLibraryCommands(Parser& parser)
{
    CLI::App* const app = &parser.app;
    command<std::string>(
        parser, app, "create", "make a new library folder",
        [](CLI::App& sub, std::string& folder) { sub.add_option("DIR", folder, "the folder")->required(); },
        [](Context& context, const std::string& folder) { return createCommand(context, folder); });
    command<None>(parser, app, "library", "which library is in use", noArguments,
        [](Context& context, const None&) { return libraryCommand(context); });
    struct Add {
        std::vector<std::string> paths;
        bool noRead = false;
    };
    command<Add>(
        parser, app, "add", "take folders and files into the library",
        [](CLI::App& sub, Add& add) {
            sub.add_option("PATH", add.paths, "folders, taken with all that lies in them, and files")
                ->required();
            sub.add_flag("--no-read", add.noRead, "leave camera data, dates and positions for later");
        },
        [](Context& context, const Add& add) { return addCommand(context, add.paths, !add.noRead); });
    command<None>(parser, app, "check", "the library's health", noArguments,
        [](Context& context, const None&) { return checkCommand(context); });
    command<None>(parser, app, "tree", "folders, projects, albums, keywords, people and totals", noArguments,
        [](Context& context, const None&) { return treeCommand(context); });
}

/// Adds an option that is one of the names; another word is refused with all of them.
template <typename T, std::size_t N, typename Entry>
CLI::Option* addChoice(CLI::App& sub, const char* option, const char* noun, std::optional<T>& choice,
    const std::array<Entry, N>& names, T Entry::*value)
{
    std::vector<std::string_view> rawValues;
    std::ranges::transform(names, std::back_inserter(rawValues), &Entry::rawValue);
    const auto all = fmt::format("{}", fmt::join(rawValues, ", "));
    const auto take = [=, &choice, &names](const std::string& text) {
        const auto found = std::ranges::find(names, text, &Entry::rawValue);
        if (found == names.end())
            throw CLI::ValidationError(fmt::format("\"{}\" is no {}: use {}", text, noun, all));
        choice = *found.*value;
    };
    return sub.add_option_function<std::string>(option, take, all);
}

void addReadingCommands(Parser& parser)
{
    CLI::App* const app = &parser.app;
    command<ListArguments>(
        parser, app, "list", "the photos of a source",
        [](CLI::App& sub, ListArguments& list) {
            sub.add_option("--source", list.source,
                "all, folder:ID, album:ID, smart:ID, project:ID, person:ID, flagged, no-alt, recent, videos");
            addChoice(sub, "--sort", "sort key", list.sort, sortKeyNames, &SortKeyName::key)
                ->type_name("KEY");
            addChoice(sub, "--filter", "filter", list.filter, gridFilterNames, &GridFilterName::filter)
                ->type_name("FILTER");
        },
        listCommand);
    command<PhotoID>(
        parser, app, "show", "one photo with all it holds",
        [](CLI::App& sub, PhotoID& id) { sub.add_option("ID", id, "the photo")->required(); },
        [](Context& context, const PhotoID& id) { return showCommand(context, id); });
    command<EditsArguments>(
        parser, app, "edits", "a photo's edit record",
        [](CLI::App& sub, EditsArguments& edits) {
            sub.add_option("ID", edits.photo, "the photo")->required();
            auto* const set = sub.add_option("--set", edits.set, "the new record as JSON, or @FILE");
            sub.add_flag("--clear", edits.clear, "back to no edits")->excludes(set);
        },
        editsCommand);
}

struct SetArguments {
    std::map<std::string, std::string> values; // by option
    PhotoArguments photos;
};

MetadataChange metadataChange(const std::map<std::string, std::string>& values)
{
    const auto value = [&](const char* option) {
        const auto found = values.find(option);
        return found == values.end() ? std::nullopt : std::optional(SharedText(found->second));
    };
    auto keywords = value("--keywords");
    if (keywords)
        keywords = SharedText(joinKeywords(splitKeywords(keywords->view())));
    return {value("--alt"), value("--title"), value("--caption"), keywords, value("--creator"),
        value("--copyright")};
}

void addMarkingCommands(Parser& parser)
{
    CLI::App* const app = &parser.app;
    struct Rate {
        int rating = 0;
        PhotoArguments photos;
    };
    command<Rate>(
        parser, app, "rate", "give stars: 0 to 5, or -1 to reject",
        [](CLI::App& sub, Rate& rate) {
            sub.add_option("N", rate.rating, "0 to 5, or -1 to reject")->required();
            addPhotos(sub, rate.photos);
        },
        [](Context& context, const Rate& rate) { return rateCommand(context, rate.rating, rate.photos); });
    struct Flag {
        bool off = false;
        PhotoArguments photos;
    };
    command<Flag>(
        parser, app, "flag", "flag photos",
        [](CLI::App& sub, Flag& flag) {
            sub.add_flag("--off", flag.off, "take the flag away");
            addPhotos(sub, flag.photos);
        },
        [](Context& context, const Flag& flag) { return flagCommand(context, !flag.off, flag.photos); });
    struct Label {
        std::string label;
        PhotoArguments photos;
    };
    command<Label>(
        parser, app, "label", "give a colour label",
        [](CLI::App& sub, Label& label) {
            sub.add_option(
                   "LABEL", label.label, "none, red, orange, yellow, green, blue, purple, gray, or 0 to 7")
                ->required();
            addPhotos(sub, label.photos);
        },
        [](Context& context, const Label& label) {
            return labelCommand(context, label.label, label.photos);
        });
    command<SetArguments>(
        parser, app, "set", "change descriptive metadata: only the fields named",
        [](CLI::App& sub, SetArguments& set) {
            for (const char* option :
                {"--title", "--caption", "--keywords", "--creator", "--copyright", "--alt"})
                sub.add_option_function<std::string>(
                    option, [&set, option](const std::string& text) { set.values[option] = text; },
                    "the new text");
            addPhotos(sub, set.photos);
        },
        [](Context& context, const SetArguments& set) {
            return setCommand(context, metadataChange(set.values), set.photos);
        });
    command<PhotoArguments>(
        parser, app, "remove", "take photos out of the library; their files stay", addPhotos, removeCommand);
}

/// Takes latitude and longitude from the front of the ids.
Coordinate takePosition(PhotoArguments& photos)
{
    double numbers[2]{};
    for (double& number : numbers) {
        if (photos.ids.empty() || !CLI::detail::lexical_cast(photos.ids.front(), number))
            throw std::invalid_argument("a position is a latitude and a longitude in degrees");
        photos.ids.erase(photos.ids.begin());
    }
    if (photos.ids.empty() && photos.source.empty())
        throw std::invalid_argument("no photos to locate");
    return {numbers[0], numbers[1]};
}

void addMetadataCommands(Parser& parser)
{
    CLI::App* const app = &parser.app;
    command<std::string>(
        parser, app, "info", "what a file itself says of how it was taken",
        [](CLI::App& sub, std::string& file) { sub.add_option("FILE", file, "the file")->required(); },
        [](Context& context, const std::string& file) { return infoCommand(context, file); });
    command<None>(parser, app, "read", "read camera data and positions of files not read yet", noArguments,
        [](Context& context, const None&) { return readCommand(context); });
    command<None>(parser, app, "save", "write changed metadata into the files", noArguments,
        [](Context& context, const None&) { return saveCommand(context); });
    command<PhotoArguments>(
        parser, app, "revert", "metadata back to what the files held when found", addPhotos, revertCommand);
    struct Shift {
        double seconds = 0;
        PhotoArguments photos;
    };
    command<Shift>(
        parser, app, "shift-dates", "move capture dates, in the library and in the files",
        [](CLI::App& sub, Shift& shift) {
            sub.add_option("SECONDS", shift.seconds, "how far; negative is earlier")->required();
            addPhotos(sub, shift.photos);
        },
        [](Context& context, const Shift& shift) {
            return shiftDatesCommand(context, shift.seconds, shift.photos);
        });
    struct Locate {
        bool clear = false;
        PhotoArguments photos; // latitude and longitude stand before the ids unless it is cleared
    };
    command<Locate>(
        parser, app, "locate", "say where photos were taken: LAT LON ID..., or --clear ID...",
        [](CLI::App& sub, Locate& locate) {
            sub.add_flag("--clear", locate.clear, "take the position away");
            addPhotos(sub, locate.photos);
        },
        [](Context& context, const Locate& locate) {
            if (locate.clear)
                return locateCommand(context, std::nullopt, locate.photos);
            auto photos = locate.photos;
            const auto position = takePosition(photos);
            return locateCommand(context, position, photos);
        });
}

/// What the commands on projects, albums and keywords take.
struct TreeArguments {
    std::int64_t id = 0;
    std::string text; // a name, or a project's id or "none"
    std::string kind = "project";
    ParentID parent;
    PhotoArguments photos;
};

void addName(CLI::App& sub, TreeArguments& tree)
{
    sub.add_option("NAME", tree.text, "the name")->required();
}

void addID(CLI::App& sub, TreeArguments& tree)
{
    sub.add_option("ID", tree.id, "its id")->required();
}

void addNameAndParent(CLI::App& sub, TreeArguments& tree)
{
    addName(sub, tree);
    sub.add_option("--parent", tree.parent, "the id of what is to hold it");
}

void addAlbumAndPhotos(CLI::App& sub, TreeArguments& tree)
{
    sub.add_option("ALBUM", tree.id, "the album's id")->required();
    addPhotos(sub, tree.photos);
}

void addProjectCommands(Parser& parser)
{
    CLI::App* const project = parser.app.add_subcommand("project", "projects")->require_subcommand(1);
    command<TreeArguments>(
        parser, project, "create", "make a project",
        [](CLI::App& sub, TreeArguments& tree) {
            addNameAndParent(sub, tree);
            sub.add_option("--kind", tree.kind, "project, album or folder")
                ->check(CLI::IsMember({"project", "album", "folder"}));
        },
        [](Context& context, const TreeArguments& tree) {
            return createProjectCommand(context, tree.text, tree.kind, tree.parent);
        });
    command<TreeArguments>(
        parser, project, "rename", "give a project another name",
        [](CLI::App& sub, TreeArguments& tree) {
            addID(sub, tree);
            addName(sub, tree);
        },
        [](Context& context, const TreeArguments& tree) {
            return renameProjectCommand(context, tree.id, tree.text);
        });
    command<TreeArguments>(parser, project, "delete",
        "delete a project and those in it; photos and albums stay", addID,
        [](Context& context, const TreeArguments& tree) { return deleteProjectCommand(context, tree.id); });
    command<TreeArguments>(
        parser, project, "assign", "put photos into a project",
        [](CLI::App& sub, TreeArguments& tree) {
            sub.add_option("PROJECT", tree.text, "the project's id, or none")->required();
            addPhotos(sub, tree.photos);
        },
        [](Context& context, const TreeArguments& tree) {
            return assignCommand(context, tree.text, tree.photos);
        });
    command<TreeArguments>(parser, project, "gather", "put everything at the root under a new project",
        addName,
        [](Context& context, const TreeArguments& tree) { return gatherCommand(context, tree.text); });
}

void addAlbumCommands(Parser& parser)
{
    CLI::App* const album = parser.app.add_subcommand("album", "albums")->require_subcommand(1);
    command<TreeArguments>(parser, album, "create", "make an album", addNameAndParent,
        [](Context& context, const TreeArguments& tree) {
            return createAlbumCommand(context, tree.text, tree.parent);
        });
    command<TreeArguments>(parser, album, "delete", "delete an album; its photos stay", addID,
        [](Context& context, const TreeArguments& tree) { return deleteAlbumCommand(context, tree.id); });
    command<TreeArguments>(
        parser, album, "move", "move an album into a project, or out of all",
        [](CLI::App& sub, TreeArguments& tree) {
            addID(sub, tree);
            sub.add_option("--parent", tree.parent, "the project; without it the album goes to the root");
        },
        [](Context& context, const TreeArguments& tree) {
            return moveAlbumCommand(context, tree.id, tree.parent);
        });
    command<TreeArguments>(parser, album, "add", "add photos to an album", addAlbumAndPhotos,
        [](Context& context, const TreeArguments& tree) {
            return addToAlbumCommand(context, tree.id, tree.photos);
        });
    command<TreeArguments>(parser, album, "take", "take photos out of an album", addAlbumAndPhotos,
        [](Context& context, const TreeArguments& tree) {
            return takeFromAlbumCommand(context, tree.id, tree.photos);
        });
}

void addKeywordCommands(Parser& parser)
{
    CLI::App* const keyword = parser.app.add_subcommand("keyword", "the keyword tree")->require_subcommand(1);
    command<TreeArguments>(parser, keyword, "create", "make a keyword", addNameAndParent,
        [](Context& context, const TreeArguments& tree) {
            return createKeywordCommand(context, tree.text, tree.parent);
        });
    command<TreeArguments>(parser, keyword, "delete",
        "delete a keyword and those below it; photos keep theirs", addID,
        [](Context& context, const TreeArguments& tree) { return deleteKeywordCommand(context, tree.id); });
}

void addModelCommands(Parser& parser)
{
    CLI::App* const model
        = parser.app.add_subcommand("model", "the face-recognition model")->require_subcommand(1);
    command<None>(parser, model, "status", "whether it is installed, and where", noArguments,
        [](Context& context, const None&) { return modelStatusCommand(context); });
    command<std::string>(
        parser, model, "fetch", "download, verify and install it",
        [](CLI::App& sub, std::string& host) {
            sub.add_option("--host", host, "a mirror, as https://example.org");
        },
        [](Context& context, const std::string& host) { return fetchModelCommand(context, host); });
    command<None>(parser, model, "remove", "remove it", noArguments,
        [](Context& context, const None&) { return removeModelCommand(context); });
}

void addGlobalOptions(Parser& parser)
{
    CLI::App& app = parser.app;
    app.set_version_flag("--version", "korvo " KORVO_VERSION);
    app.set_help_all_flag("--help-all", "the help of every command");
    app.add_option(
        "--library", parser.options.library, "the library folder; else $KORVO_LIBRARY, else the last one");
    app.add_flag("--json", parser.options.json, "JSON on standard output, a line for each object of a list");
    app.add_flag("--quiet", parser.options.quiet, "no progress");
    app.require_subcommand(1);
    app.fallthrough();
    app.get_formatter()->column_width(36);
}

/// What is wrong with the call, in a sentence.
std::string reason(const CLI::App& app, const CLI::ParseError& error)
{
    const auto unknown = app.remaining();
    if (app.get_subcommands().empty() && !unknown.empty() && !unknown.front().starts_with('-'))
        return "no command \"" + unknown.front() + "\"";
    return error.what();
}

} // namespace

ParseResult parseCommandLine(int argc, char** argv)
{
    auto parser = std::make_unique<Parser>();
    addGlobalOptions(*parser);
    addLibraryCommands(*parser);
    addReadingCommands(*parser);
    addMarkingCommands(*parser);
    addRenderCommands(*parser);
    addMetadataCommands(*parser);
    addProjectCommands(*parser);
    addAlbumCommands(*parser);
    addKeywordCommands(*parser);
    addModelCommands(*parser);
    addGroupCommands(*parser);
    addNamingCommands(*parser);
    addImportCommands(*parser);
    addApertureCommands(*parser);
    try {
        parser->app.parse(argc, argv);
    } catch (const CLI::Success& asked) { // help or version
        parser->app.exit(asked);
        return {std::nullopt, {}, ExitCode::done};
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr, "korvo: %s\n%s", reason(parser->app, error).c_str(), parser->app.help().c_str());
        return {std::nullopt, {}, ExitCode::usage};
    }
    return {ParsedCommand{parser->options, parser->chosen}, parser->app.help(), ExitCode::done};
}

} // namespace korvo
