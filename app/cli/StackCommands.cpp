#include "app/cli/Commands.h"
#include "base/Text.h"
#include "catalog/GridOrder.h"
#include "catalog/Stacks.h"

#include <fmt/ranges.h>

namespace korvo {

namespace {

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

ExitCode stackPhotos(Context& context, const StackArguments& arguments)
{
    const auto ids = context.photos(arguments.photos);
    if (ids.size() < 2 && context.hasFailures())
        return context.finish(0);
    context.printMade(createStack(context.library(), ids, arguments.pick));
    return context.finish(ids.size(), Ended::whole);
}

void listStacks(Context& context)
{
    for (const auto& stack : stacksIn(context.library().database()))
        context.print(stack,
            fmt::format("stack {:>6}  {}, {}: {}", stack.id, counted(stack.members.size(), "photo"),
                stack.collapsed ? "collapsed" : "expanded", fmt::join(stack.members, " ")));
}

struct AutoStackArguments {
    std::string source = "all";
    int interval = autoStackSheet::startInterval; // seconds
    bool dryRun = false; // only say what would be stacked
};

void addAutoStackArguments(CLI::App& sub, AutoStackArguments& arguments)
{
    sub.add_option("--source", arguments.source, "the photos to look at; all without one");
    sub.add_option("--interval", arguments.interval, std::string(autoStackSheet::interval))
        ->check(CLI::Range(1, 86400));
    sub.add_flag("--dry-run", arguments.dryRun, "only say what would be stacked");
}

struct PlannedStack {
    std::optional<std::int64_t> id; // once it is made
    PhotoID pick;
    std::vector<PhotoID> members;
};
KORVO_RECORD(PlannedStack, id, pick, members)

struct PlannedStacks {
    int interval;
    std::size_t stacks;
    std::size_t photos;
    std::vector<PlannedStack> groups;
};
KORVO_RECORD(PlannedStacks, interval, stacks, photos, groups)

PlannedStacks plannedStacks(const AutoStackPlan& plan, int interval)
{
    PlannedStacks result{interval, plan.groups().size(), plan.photoCount(), {}};
    for (const auto& group : plan.groups()) {
        const auto members = plan.photos(group);
        result.groups.push_back({std::nullopt, group.pick, {members.begin(), members.end()}});
    }
    return result;
}

void stackByTime(Context& context, const AutoStackArguments& arguments)
{
    std::optional<Transaction> transaction;
    if (!arguments.dryRun) // what the plan is made from must not change before it is carried out
        transaction.emplace(context.library().database());
    const auto items = context.library().photos(context.existingSource(arguments.source));
    const AutoStackPlan plan(items, listed(items, ListedBy::hand).order, arguments.interval);
    auto stacks = plannedStacks(plan, arguments.interval);
    if (transaction) {
        const auto made = createStacks(context.library(), plan);
        for (std::size_t i = 0; i < made.size(); ++i)
            stacks.groups[i].id = made[i];
        transaction->commit();
    }
    context.print(stacks, autoStackText(plan, arguments.interval));
}

void addStateCommand(const Commands& stack, const char* name, const char* description, StackState state)
{
    stack.add<StackArguments>(
        name, description, addStack, [state](Context& context, const StackArguments& arguments) {
            setStackState(context.library(), arguments.stack, state);
        });
}

} // namespace

void addStackCommands(const Commands& app)
{
    const auto stack = app.group("stack", "stacks of photos");
    stack.add<StackArguments>(
        "create", "gather photos, in this order, under a pick",
        [](CLI::App& sub, StackArguments& arguments) {
            addPhotos(sub, arguments.photos);
            sub.add_option("--pick", arguments.pick, "the pick; the first photo without one");
        },
        stackPhotos);
    stack.add<StackArguments>("unstack", "dissolve a stack; its photos stay", addStack,
        [](Context& context, const StackArguments& arguments) {
            unstack(context.library(), arguments.stack);
        });
    stack.add<StackArguments>("pick", "choose the photo that stands for the stack", addStackAndPhoto,
        [](Context& context, const StackArguments& arguments) {
            setPick(context.library(), arguments.stack, arguments.photo);
        });
    addStateCommand(stack, "collapse", "show the stack's pick only", StackState::collapsed);
    addStateCommand(stack, "expand", "show all photos of the stack", StackState::expanded);
    stack.add<StackArguments>(
        "move", "move a photo within its stack",
        [](CLI::App& sub, StackArguments& arguments) {
            addStackAndPhoto(sub, arguments);
            sub.add_option("POSITION", arguments.position, "its new place among those shown; the pick is 0")
                ->required()
                ->check(CLI::NonNegativeNumber);
        },
        [](Context& context, const StackArguments& arguments) {
            moveInStack(context.library(), arguments.stack, arguments.photo, arguments.position);
        });
    stack.add("list", "all stacks with their photos as shown", listStacks);
    stack.add<AutoStackArguments>(
        "auto", std::string(autoStackSheet::explanation), addAutoStackArguments, stackByTime);
}

} // namespace korvo
