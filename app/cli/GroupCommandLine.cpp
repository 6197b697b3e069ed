#include "app/cli/Commands.h"
#include "app/cli/Parser.h"

#include <algorithm>
#include <fmt/ranges.h>

namespace korvo {

namespace {

struct VersionArguments {
    PhotoID photo = 0;
    std::optional<std::string> name;
};

void addVersionCommands(Parser& parser)
{
    CLI::App* const version
        = parser.app.add_subcommand("version", "versions: further renderings of a photo's file")
              ->require_subcommand(1);
    command<VersionArguments>(
        parser, version, "create", "make a version of a photo",
        [](CLI::App& sub, VersionArguments& arguments) {
            sub.add_option("ID", arguments.photo, "the photo")->required();
            sub.add_option("--name", arguments.name, "its name; \"Version 2\" and so on without one");
        },
        [](Context& context, const VersionArguments& arguments) {
            return createVersionCommand(context, arguments.photo, arguments.name);
        });
    command<PhotoID>(
        parser, version, "list", "the versions of a photo, oldest first",
        [](CLI::App& sub, PhotoID& photo) { sub.add_option("ID", photo, "the photo")->required(); },
        [](Context& context, const PhotoID& photo) { return listVersionsCommand(context, photo); });
}

struct StackArguments {
    std::int64_t stack = 0;
    PhotoID photo = 0;
    std::size_t position = 0;
    std::optional<PhotoID> pick;
    PhotoArguments photos;
};

void addStack(CLI::App& sub, StackArguments& arguments)
{
    sub.add_option("STACK", arguments.stack, "the stack's id")->required();
}

void addStackAndPhoto(CLI::App& sub, StackArguments& arguments)
{
    addStack(sub, arguments);
    sub.add_option("ID", arguments.photo, "one of its photos")->required();
}

void addStackCommands(Parser& parser, CLI::App* stack)
{
    command<StackArguments>(
        parser, stack, "create", "gather photos, in this order, under a pick",
        [](CLI::App& sub, StackArguments& arguments) {
            addPhotos(sub, arguments.photos);
            sub.add_option("--pick", arguments.pick, "the pick; the first photo without one");
        },
        [](Context& context, const StackArguments& arguments) {
            return createStackCommand(context, arguments.photos, arguments.pick);
        });
    command<StackArguments>(parser, stack, "unstack", "dissolve a stack; its photos stay", addStack,
        [](Context& context, const StackArguments& arguments) {
            return unstackCommand(context, arguments.stack);
        });
    command<StackArguments>(parser, stack, "pick", "choose the photo that stands for the stack",
        addStackAndPhoto, [](Context& context, const StackArguments& arguments) {
            return pickCommand(context, arguments.stack, arguments.photo);
        });
    command<StackArguments>(parser, stack, "collapse", "show the stack's pick only", addStack,
        [](Context& context, const StackArguments& arguments) {
            return stackStateCommand(context, arguments.stack, StackState::collapsed);
        });
    command<StackArguments>(parser, stack, "expand", "show all photos of the stack", addStack,
        [](Context& context, const StackArguments& arguments) {
            return stackStateCommand(context, arguments.stack, StackState::expanded);
        });
    command<StackArguments>(
        parser, stack, "move", "move a photo within its stack",
        [](CLI::App& sub, StackArguments& arguments) {
            addStackAndPhoto(sub, arguments);
            sub.add_option("POSITION", arguments.position, "its new place among those shown; the pick is 0")
                ->required()
                ->check(CLI::NonNegativeNumber);
        },
        [](Context& context, const StackArguments& arguments) {
            return moveInStackCommand(context, arguments.stack, arguments.photo, arguments.position);
        });
    command<None>(parser, stack, "list", "all stacks with their photos as shown", noArguments,
        [](Context& context, const None&) { return listStacksCommand(context); });
    command<AutoStackArguments>(
        parser, stack, "auto", std::string(autoStackSheet::explanation).c_str(),
        [](CLI::App& sub, AutoStackArguments& arguments) {
            sub.add_option("--source", arguments.source, "the photos to look at; all without one");
            sub.add_option("--interval", arguments.interval, std::string(autoStackSheet::interval))
                ->check(CLI::Range(1, 86400));
            sub.add_flag("--dry-run", arguments.dryRun, "only say what would be stacked");
        },
        autoStackCommand);
}

void addSmartAlbumID(CLI::App& sub, SmartAlbumArguments& album)
{
    sub.add_option("ID", album.id, "the smart album's id")->required();
}

/// What a rule may say, a field a line.
std::string rulesHelp()
{
    std::string help = "Fields and what each may be asked:\n";
    for (const auto& field : smartAlbumFields()) {
        std::vector<std::string_view> ops;
        std::ranges::transform(field.ops, std::back_inserter(ops), nameOf<SmartAlbumRule::Op>);
        help += fmt::format("  {:<13}{}{}{}\n", nameOf(field.field), fmt::join(ops, ", "),
            field.needs.empty() ? "" : "; ", field.needs);
    }
    return help;
}

CLI::Option* addRules(CLI::App& sub, SmartAlbumArguments& album)
{
    sub.footer(rulesHelp);
    return sub.add_option("--rules", album.rules,
        R"(as {"rules":[{"field":"rating","op":"atLeast","value":"3"}],"matchAll":true})");
}

void addSmartAlbumCommands(Parser& parser, CLI::App* smart)
{
    command<SmartAlbumArguments>(
        parser, smart, "create", "make a smart album",
        [](CLI::App& sub, SmartAlbumArguments& album) {
            sub.add_option("NAME", album.name, "the name")->required();
            addRules(sub, album)->required();
        },
        createSmartAlbumCommand);
    command<SmartAlbumArguments>(
        parser, smart, "update", "change a smart album's name, its rules, or both",
        [](CLI::App& sub, SmartAlbumArguments& album) {
            addSmartAlbumID(sub, album);
            sub.add_option("--name", album.name, "the new name");
            addRules(sub, album);
        },
        updateSmartAlbumCommand);
    command<SmartAlbumArguments>(parser, smart, "delete", "delete a smart album; its photos stay",
        addSmartAlbumID, deleteSmartAlbumCommand);
    command<SmartAlbumArguments>(
        parser, smart, "count", "how many photos rules match",
        [](CLI::App& sub, SmartAlbumArguments& album) { addRules(sub, album)->required(); },
        countSmartAlbumCommand);
}

} // namespace

void addGroupCommands(Parser& parser)
{
    addVersionCommands(parser);
    addStackCommands(parser, parser.app.add_subcommand("stack", "stacks of photos")->require_subcommand(1));
    addSmartAlbumCommands(parser, parser.app.add_subcommand("smart", "smart albums")->require_subcommand(1));
}

} // namespace korvo
