#include "app/cli/CommandLine.h"

#include "app/cli/Commands.h"

namespace korvo {

void addPhotos(CLI::App& sub, PhotoArguments& photos)
{
    sub.add_option("ID", photos.ids, "photo ids, or - for ids from standard input");
    sub.add_option("--source", photos.source, "all photos of a source: " + sourceNames());
    sub.final_callback([&photos] {
        if (photos.ids.empty() && photos.source.empty())
            throw CLI::RequiredError("ID or --source");
    });
}

namespace {

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

/// In the order of the help.
constexpr void (*commandAdders[])(const Commands&)
    = {addLibraryCommands, addPhotoCommands, addMarkingCommands, addRenderCommands, addExportCommands,
        addAnalysisCommands, addMetadataCommands, addTreeCommands, addStackCommands, addSmartAlbumCommands,
        addNamingCommands, addImportCommands, addApertureCommands, addModelCommands};

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
    for (const auto add : commandAdders)
        add(Commands(*parser));
    try {
        parser->app.parse(argc, argv);
    } catch (const CLI::Success& asked) { // help or version
        parser->app.exit(asked);
        return {std::nullopt, {}, ExitCode::done};
    } catch (const CLI::ParseError& error) {
        printError("korvo: " + reason(parser->app, error) + "\n" + parser->app.help());
        return {std::nullopt, {}, ExitCode::usage};
    }
    return {ParsedCommand{parser->options, parser->chosen}, parser->app.help(), ExitCode::done};
}

} // namespace korvo
