#pragma once

#include "app/cli/Context.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace korvo {

/// The parser, and the command that it came upon.
struct Parser {
    CLI::App app{
        "Korvo keeps a library of photos where they lie, and edits them without touching the originals.",
        "korvo"};
    GlobalOptions options;
    std::function<ExitCode(Context&)> chosen;
};

/// The commands of the program, or those behind a word of their own, as they are made known to the parser.
class Commands {
public:
    explicit Commands(Parser& parser) : Commands(parser, parser.app) { }

    /// Commands behind a word of their own, as "album create".
    Commands group(const char* name, const char* description) const
    {
        return {parser_, *parent_.add_subcommand(name, description)->require_subcommand(1)};
    }

    /// A command that takes arguments of type T: `define` makes them known, `run` is called with them. It
    /// throws std::exception for what ends it with nothing done; where it returns nothing all is done.
    template <typename T, typename Define, typename Run>
    void add(const char* name, const std::string& description, Define define, Run run) const
    {
        const auto arguments = std::make_shared<T>();
        CLI::App& sub = *parent_.add_subcommand(name, description);
        define(sub, *arguments);
        sub.parse_complete_callback([&parser = parser_, arguments, run] {
            parser.chosen = [arguments, run](Context& context) {
                return exitCode([&] { return run(context, std::as_const(*arguments)); });
            };
        });
    }
    /// A command that takes none.
    template <typename Run>
    void add(const char* name, const char* description, Run run) const
    {
        struct None { };
        add<None>(
            name, description, [](CLI::App&, None&) {},
            [run](Context& context, const None&) { return run(context); });
    }

private:
    Commands(Parser& parser, CLI::App& parent) : parser_(parser), parent_(parent) { }

    template <typename Run>
    static ExitCode exitCode(Run run)
    {
        if constexpr (std::is_void_v<decltype(run())>) {
            run();
            return ExitCode::done;
        } else {
            return run();
        }
    }

    Parser& parser_;
    CLI::App& parent_;
};

/// The photos that a command takes, which must be named.
void addPhotos(CLI::App& sub, PhotoArguments& photos);

// Each adds the commands of the source that is named after it.
void addLibraryCommands(const Commands& app);
void addPhotoCommands(const Commands& app);
void addMarkingCommands(const Commands& app);
void addRenderCommands(const Commands& app);
void addExportCommands(const Commands& app);
void addAnalysisCommands(const Commands& app);
void addMetadataCommands(const Commands& app);
void addTreeCommands(const Commands& app);
void addStackCommands(const Commands& app);
void addSmartAlbumCommands(const Commands& app);
void addNamingCommands(const Commands& app);
void addImportCommands(const Commands& app);
void addApertureCommands(const Commands& app);
void addModelCommands(const Commands& app);

} // namespace korvo
