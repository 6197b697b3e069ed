#include "app/cli/Commands.h"
#include "app/cli/Parser.h"

namespace korvo {

void addNamingCommands(Parser& parser)
{
    CLI::App* const naming
        = parser.app.add_subcommand("naming", "patterns for file names")->require_subcommand(1);
    command<None>(parser, naming, "list", "the presets", noArguments,
        [](Context& context, const None&) { return listNamingCommand(context); });
    struct Expand {
        std::string pattern;
        PhotoArguments photos;
    };
    command<Expand>(
        parser, naming, "expand", "the names that a pattern gives photos",
        [](CLI::App& sub, Expand& expand) {
            sub.add_option("PATTERN", expand.pattern, "text with {name}, {seq}, {date} and {title}")
                ->required();
            addPhotos(sub, expand.photos);
        },
        [](Context& context, const Expand& expand) {
            return expandNamingCommand(context, expand.pattern, expand.photos);
        });
    command<std::string>(
        parser, naming, "set", "replace the presets by those of a file",
        [](CLI::App& sub, std::string& file) {
            sub.add_option("FILE", file, R"(JSON: [{"name":"Web","pattern":"{name}-web"}, …])")->required();
        },
        [](Context& context, const std::string& file) { return setNamingCommand(context, file); });
    command<None>(parser, naming, "restore", "back to the default presets", noArguments,
        [](Context& context, const None&) { return restoreNamingCommand(context); });
}

namespace {

void addImportArguments(CLI::App& sub, ImportArguments& import)
{
    sub.add_option("SOURCE", import.sources,
           "a card, a drive, folders or files; \"camera\" for the one on USB, camera:PORT for one of several")
        ->required();
    auto* const copyTo = sub.add_option(
        "--copy-to", import.copyTo, "the folder for the copies; else Korvo Imports in Pictures");
    sub.add_flag("--reference", import.reference, "leave the files where they are; those of cards are copied")
        ->excludes(copyTo);
    sub.add_option("--pattern", import.pattern, "new names, with {name}, {seq}, {date} and {title}");
    auto* const project
        = sub.add_option("--project", import.project, "into the project of this name, made if there is none");
    sub.add_flag("--by-day", import.byDay, "into one project per day")->excludes(project);
    sub.add_option("--creator", import.creator, "the photos' creator");
    sub.add_option("--copyright", import.copyright, "the photos' copyright");
    sub.add_option("--keywords", import.keywords, "keywords to add, comma, separated");
    sub.add_flag("--keep-duplicates", import.keepDuplicates, "import what the library has already, too");
    sub.add_flag("--eject", import.eject, "eject the card or drive afterwards");
    sub.add_flag("--dry-run", import.dryRun, "only list what would be imported");
}

} // namespace

void addImportCommands(Parser& parser)
{
    command<None>(parser, &parser.app, "volumes", "the cards and drives that photos can be imported from",
        noArguments, [](Context& context, const None&) { return volumesCommand(context); });
    command<ImportArguments>(parser, &parser.app, "import",
        "take photos in from cards, drives, folders and cameras", addImportArguments, importCommand);
}

} // namespace korvo
