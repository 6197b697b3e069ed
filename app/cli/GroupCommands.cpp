#include "app/cli/Commands.h"
#include "app/cli/PhotoOutput.h"
#include "base/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace korvo {

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
    context.printMade(context.library().createStack(ids, pick));
    return context.finish(ids.size());
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

} // namespace korvo
