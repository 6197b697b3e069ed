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

void addImportCommands(Parser& parser)
{
    command<None>(parser, &parser.app, "volumes", "the cards and drives that photos can be imported from",
        noArguments, [](Context& context, const None&) { return volumesCommand(context); });
}

} // namespace korvo
