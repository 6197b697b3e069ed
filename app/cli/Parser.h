#pragma once

#include "app/cli/Context.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>

namespace korvo {

/// The parser, and the command that it comes upon. Arguments live as long as the parser: each command keeps
/// its own in a shared block that its call reads.
struct Parser {
    CLI::App app{
        "Korvo keeps a library of photos where they lie, and edits them without touching the originals.",
        "korvo"};
    GlobalOptions options;
    std::function<ExitCode(Context&)> chosen;
};

/// A command below `parent`, with its arguments in a block of type T: `define` adds them, `run` is called
/// with them.
template <typename T, typename Define>
void command(Parser& parser, CLI::App* parent, const char* name, const char* description, Define define,
    ExitCode (*run)(Context&, const T&))
{
    auto arguments = std::make_shared<T>();
    CLI::App* const sub = parent->add_subcommand(name, description);
    define(*sub, *arguments);
    sub->parse_complete_callback([&parser, arguments, run] {
        parser.chosen = [arguments, run](Context& context) { return run(context, *arguments); };
    });
}

struct None { };
constexpr auto noArguments = [](CLI::App&, None&) {};

/// The photos that a command takes, which must be named.
void addPhotos(CLI::App& sub, PhotoArguments& photos);

/// The commands on pictures (RenderCommandLine.cpp).
void addRenderCommands(Parser& parser);

/// The commands on versions, stacks and smart albums (GroupCommandLine.cpp).
void addGroupCommands(Parser& parser);

/// The commands on naming patterns, and on volumes and import (ImportCommandLine.cpp).
void addNamingCommands(Parser& parser);
void addImportCommands(Parser& parser);

/// The commands on Aperture libraries (ApertureCommandLine.cpp).
void addApertureCommands(Parser& parser);

} // namespace korvo
