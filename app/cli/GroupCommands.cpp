#include "app/cli/Commands.h"
#include "app/cli/PhotoOutput.h"
#include "base/Text.h"
#include "catalog/RuleTest.h"
#include "catalog/SmartAlbumEditor.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <stdexcept>

namespace korvo {

namespace {

/// The rules of an argument. Those that can match nothing are kept, as the editor keeps them, and said.
SmartAlbumRules readRules(const std::string& json)
{
    auto rules = smartAlbumRules(json);
    for (const auto& rule : rules.rules)
        if (const auto reason = fault(rule))
            printError("this rule matches nothing: " + *reason);
    return rules;
}

} // namespace

ExitCode createVersionCommand(Context& context, PhotoID photo, const std::optional<std::string>& name)
{
    context.printMade(context.library().createVersion(photo, name, std::nullopt, context.clock().now()));
    return ExitCode::done;
}

ExitCode listVersionsCommand(Context& context, PhotoID photo)
{
    if (!context.library().contains(photo))
        throw NotFoundError("photo", photo);
    for (const auto& version : context.library().versions(photo))
        context.print(context.options().json
                ? photoJSON(version)
                : fmt::format("{}  {}", photoLine(version), version.versionName.view()));
    return ExitCode::done;
}

ExitCode createStackCommand(Context& context, const PhotoArguments& photos, std::optional<PhotoID> pick)
{
    const auto ids = context.photos(photos);
    if (ids.size() < 2 && context.hasFailures())
        return context.finish(0);
    context.printMade(context.library().createStack(ids, pick));
    return context.finish(ids.size(), Ended::whole);
}

ExitCode unstackCommand(Context& context, std::int64_t stack)
{
    context.library().unstack(stack);
    return ExitCode::done;
}

ExitCode pickCommand(Context& context, std::int64_t stack, PhotoID photo)
{
    context.library().setPick(stack, photo);
    return ExitCode::done;
}

ExitCode stackStateCommand(Context& context, std::int64_t stack, StackState state)
{
    context.library().setStackState(stack, state);
    return ExitCode::done;
}

ExitCode moveInStackCommand(Context& context, std::int64_t stack, PhotoID photo, std::size_t position)
{
    context.library().moveInStack(stack, photo, position);
    return ExitCode::done;
}

ExitCode listStacksCommand(Context& context)
{
    for (const auto& stack : context.library().stacks())
        context.print(context.options().json
                ? toJson(stack)
                : fmt::format("stack {:>6}  {}, {}: {}", stack.id, counted(stack.members.size(), "photo"),
                    stack.collapsed ? "collapsed" : "expanded", fmt::join(stack.members, " ")));
    return ExitCode::done;
}

namespace {

std::string planJSON(const AutoStackPlan& plan, int interval)
{
    JsonWriter json;
    json.beginObject();
    json.member("interval", interval);
    json.member("stacks", plan.groups().size());
    json.member("photos", plan.photoCount());
    json.key("groups");
    json.beginArray();
    for (const auto& group : plan.groups()) {
        const auto members = plan.photos(group);
        json.beginObject();
        json.member("pick", group.pick);
        json.member("members", std::vector<PhotoID>(members.begin(), members.end()));
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return json.take();
}

} // namespace

ExitCode autoStackCommand(Context& context, const AutoStackArguments& arguments)
{
    // What the plan is made from must not change before it is carried out.
    Transaction transaction(context.library().database());
    const auto items = context.library().photos(context.existingSource(arguments.source));
    const AutoStackPlan plan(items, listed(items, ListedBy::hand).order, arguments.interval);
    if (!arguments.dryRun)
        context.library().createStacks(plan);
    transaction.commit();
    context.print(context.options().json ? planJSON(plan, arguments.interval)
                                         : autoStackText(plan, arguments.interval));
    return ExitCode::done;
}

ExitCode createSmartAlbumCommand(Context& context, const SmartAlbumArguments& album)
{
    const auto rules = toJson(readRules(album.rules.value()));
    context.printMade(context.library().createSmartAlbum(album.name.value(), rules));
    return ExitCode::done;
}

ExitCode updateSmartAlbumCommand(Context& context, const SmartAlbumArguments& album)
{
    if (!album.name && !album.rules)
        throw std::invalid_argument("name what is to change: --name, --rules or both");
    Transaction transaction(context.library().database());
    const auto before = context.library().smartAlbum(album.id);
    const auto rules = album.rules ? toJson(readRules(*album.rules)) : before.rules;
    context.library().changeSmartAlbum(album.id, album.name.value_or(before.name), rules);
    transaction.commit();
    return ExitCode::done;
}

ExitCode deleteSmartAlbumCommand(Context& context, const SmartAlbumArguments& album)
{
    context.library().deleteSmartAlbum(album.id);
    return ExitCode::done;
}

ExitCode countSmartAlbumCommand(Context& context, const SmartAlbumArguments& album)
{
    const auto count = context.library().countMatching(readRules(album.rules.value()));
    context.print(context.options().json ? fmt::format(R"({{"count":{}}})", count) : matchCountText(count));
    return ExitCode::done;
}

} // namespace korvo
