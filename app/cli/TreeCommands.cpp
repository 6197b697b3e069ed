#include "app/cli/Commands.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <charconv>
#include <stdexcept>

namespace korvo {

namespace {

std::string indented(std::size_t depth, const std::string& text)
{
    return std::string(2 * depth, ' ') + text;
}

void printProjects(
    const Context& context, const LibraryTree& tree, const std::vector<ProjectNode>& nodes, std::size_t depth)
{
    for (const auto& node : nodes) {
        context.print(indented(depth,
            fmt::format("project:{}  {} ({})", node.id, node.name,
                counted(static_cast<std::size_t>(node.count), "photo"))));
        for (const auto& album : tree.albums)
            if (album.parentID == node.id)
                context.print(indented(depth + 1,
                    fmt::format("album:{}  {} ({})", album.id, album.name,
                        counted(static_cast<std::size_t>(album.count), "photo"))));
        printProjects(context, tree, node.children, depth + 1);
    }
}

void printKeywords(
    const Context& context, const std::vector<KeywordRow>& keywords, ParentID parent, std::size_t depth)
{
    for (const auto& keyword : keywords)
        if (keyword.parentID == parent) {
            context.print(indented(depth, fmt::format("keyword {}  {}", keyword.id, keyword.name)));
            printKeywords(context, keywords, keyword.id, depth + 1);
        }
}

template <typename Create>
ExitCode create(const Context& context, Create make)
{
    context.printMade(make());
    return ExitCode::done;
}

} // namespace

ExitCode treeCommand(Context& context)
{
    const auto tree = context.library().tree();
    if (context.options().json) {
        context.print(toJson(tree));
        return ExitCode::done;
    }
    const auto total = [](std::int64_t count) { return static_cast<std::size_t>(count); };
    context.print(fmt::format("{}: {}, {} without ALT text, {} with unsaved metadata",
        context.library().libraryURL().string(), counted(total(tree.totals.photos), "photo"),
        tree.totals.withoutAltText, tree.totals.dirty));
    for (const auto& folder : tree.folders)
        context.print(fmt::format("folder:{}  {}", folder.id, folder.path));
    printProjects(context, tree, tree.projects, 0);
    for (const auto& album : tree.albums)
        if (!album.parentID)
            context.print(
                fmt::format("album:{}  {} ({})", album.id, album.name, counted(total(album.count), "photo")));
    for (const auto& album : tree.smartAlbums)
        context.print(fmt::format("smart:{}  {}", album.id, album.name));
    printKeywords(context, tree.keywords, std::nullopt, 0);
    for (const auto& person : tree.people)
        context.print(
            fmt::format("person:{}  {} ({})", person.id, person.name, counted(total(person.count), "photo")));
    return ExitCode::done;
}

ExitCode createProjectCommand(
    Context& context, const std::string& name, const std::string& kind, ParentID parent)
{
    return create(context, [&] { return context.library().createProject(name, kind, parent); });
}

ExitCode renameProjectCommand(Context& context, std::int64_t project, const std::string& name)
{
    context.library().renameProject(project, name);
    return ExitCode::done;
}

ExitCode deleteProjectCommand(Context& context, std::int64_t project)
{
    context.library().deleteProject(project);
    return ExitCode::done;
}

ExitCode assignCommand(Context& context, const std::string& project, const PhotoArguments& photos)
{
    ParentID id;
    if (project != "none") {
        std::int64_t number = 0;
        const auto [end, error] = std::from_chars(project.data(), project.data() + project.size(), number);
        if (error != std::errc() || end != project.data() + project.size())
            throw std::invalid_argument("\"" + project + "\" is no project id");
        id = number;
    }
    return changePhotos(
        context, photos, [&](const auto& ids) { context.library().assignToProject(ids, id); });
}

ExitCode gatherCommand(Context& context, const std::string& name)
{
    return create(context, [&] { return context.library().gatherUnderProject(name); });
}

ExitCode createAlbumCommand(Context& context, const std::string& name, ParentID parent)
{
    return create(context, [&] { return context.library().createAlbum(name, parent); });
}

ExitCode deleteAlbumCommand(Context& context, std::int64_t album)
{
    context.library().deleteAlbum(album);
    return ExitCode::done;
}

ExitCode moveAlbumCommand(Context& context, std::int64_t album, ParentID parent)
{
    context.library().moveAlbum(album, parent);
    return ExitCode::done;
}

ExitCode addToAlbumCommand(Context& context, std::int64_t album, const PhotoArguments& photos)
{
    return changePhotos(context, photos, [&](const auto& ids) { context.library().addToAlbum(album, ids); });
}

ExitCode takeFromAlbumCommand(Context& context, std::int64_t album, const PhotoArguments& photos)
{
    return changePhotos(
        context, photos, [&](const auto& ids) { context.library().removeFromAlbum(album, ids); });
}

ExitCode createKeywordCommand(Context& context, const std::string& name, ParentID parent)
{
    return create(context, [&] { return context.library().createKeyword(name, parent); });
}

ExitCode deleteKeywordCommand(Context& context, std::int64_t keyword)
{
    context.library().deleteKeyword(keyword);
    return ExitCode::done;
}

} // namespace korvo
