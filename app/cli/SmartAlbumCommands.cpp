#include "app/cli/Commands.h"
#include "catalog/RuleTest.h"
#include "catalog/store/SmartAlbumEditor.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <stdexcept>

namespace korvo {

namespace {

struct SmartAlbumArguments {
    std::int64_t id = 0;
    std::optional<std::string> name;
    std::optional<std::string> rules; // JSON
    std::optional<std::int64_t> before;
};

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

/// The rules of an argument. Those that can match nothing are kept, as the editor keeps them, and said.
SmartAlbumRules readRules(const std::string& json)
{
    auto rules = smartAlbumRules(json);
    for (const auto& rule : rules.rules)
        if (const auto reason = fault(rule))
            printError("this rule matches nothing: " + *reason);
    return rules;
}

void createSmartAlbum(Context& context, const SmartAlbumArguments& album)
{
    const auto rules = toJson(readRules(album.rules.value()));
    context.printMade(context.library().createSmartAlbum(album.name.value(), rules));
}

/// What is not named stays as it is.
void updateSmartAlbum(Context& context, const SmartAlbumArguments& album)
{
    if (!album.name && !album.rules)
        throw std::invalid_argument("name what is to change: --name, --rules or both");
    Transaction transaction(context.library().database());
    const auto before = context.library().smartAlbum(album.id);
    const auto rules = album.rules ? toJson(readRules(*album.rules)) : before.rules;
    context.library().changeSmartAlbum(album.id, album.name.value_or(before.name), rules);
    transaction.commit();
}

void moveSmartAlbum(Context& context, const SmartAlbumArguments& album)
{
    if (album.before)
        (void)context.library().smartAlbum(*album.before); // must be there
    context.library().placeSmartAlbum(album.id, album.before);
}

struct MatchCount {
    std::size_t count;
};
KORVO_RECORD(MatchCount, count)

void countMatches(Context& context, const SmartAlbumArguments& album)
{
    const auto count = context.library().countMatching(readRules(album.rules.value()));
    context.print(MatchCount{count}, matchCountText(count));
}

} // namespace

void addSmartAlbumCommands(const Commands& app)
{
    const auto smart = app.group("smart", "smart albums");
    smart.add<SmartAlbumArguments>(
        "create", "make a smart album",
        [](CLI::App& sub, SmartAlbumArguments& album) {
            sub.add_option("NAME", album.name, "the name")->required();
            addRules(sub, album)->required();
        },
        createSmartAlbum);
    smart.add<SmartAlbumArguments>(
        "update", "change a smart album's name, its rules, or both",
        [](CLI::App& sub, SmartAlbumArguments& album) {
            addSmartAlbumID(sub, album);
            sub.add_option("--name", album.name, "the new name");
            addRules(sub, album);
        },
        updateSmartAlbum);
    smart.add<SmartAlbumArguments>(
        "move", "move a smart album before another, or behind all",
        [](CLI::App& sub, SmartAlbumArguments& album) {
            addSmartAlbumID(sub, album);
            sub.add_option("--before", album.before, "the smart album before which it is to stand");
        },
        moveSmartAlbum);
    smart.add<SmartAlbumArguments>("delete", "delete a smart album; its photos stay", addSmartAlbumID,
        [](Context& context, const SmartAlbumArguments& album) {
            context.library().deleteSmartAlbum(album.id);
        });
    smart.add<SmartAlbumArguments>(
        "count", "how many photos rules match",
        [](CLI::App& sub, SmartAlbumArguments& album) { addRules(sub, album)->required(); }, countMatches);
}

} // namespace korvo
