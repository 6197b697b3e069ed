#include "app/cli/Commands.h"
#include "base/Text.h"
#include "catalog/LibraryReading.h"
#include "catalog/MovedFolder.h"
#include "catalog/RenameKeyword.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <unordered_set>

namespace korvo {

namespace {

using ParentID = std::optional<std::int64_t>;

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

using KeywordsByParent = std::map<ParentID, std::vector<const KeywordRow*>>;

void printKeywords(
    const Context& context, const KeywordsByParent& keywords, ParentID parent, std::size_t depth)
{
    const auto found = keywords.find(parent);
    if (found == keywords.end())
        return;
    for (const auto* const keyword : found->second) {
        context.print(indented(depth, fmt::format("keyword {}  {}", keyword->id, keyword->name)));
        printKeywords(context, keywords, keyword->id, depth + 1);
    }
}

void printTree(Context& context)
{
    const auto tree = context.library().tree();
    if (context.options().json)
        return context.print(toJson(tree));
    const auto total = [](std::int64_t count) { return static_cast<std::size_t>(count); };
    context.print(fmt::format("{}: {}, {} without ALT text, {} with unsaved metadata",
        context.library().libraryURL().string(), counted(total(tree.totals.photos), "photo"),
        grouped(total(tree.totals.withoutAltText)), grouped(total(tree.totals.dirty))));
    for (const auto& folder : tree.folders)
        context.print(fmt::format("folder:{}  {}", folder.id, folder.path));
    printProjects(context, tree, tree.projects, 0);
    for (const auto& album : tree.albums)
        if (!album.parentID)
            context.print(
                fmt::format("album:{}  {} ({})", album.id, album.name, counted(total(album.count), "photo")));
    for (const auto& album : tree.smartAlbums)
        context.print(fmt::format("smart:{}  {}", album.id, album.name));
    KeywordsByParent keywords;
    for (const auto& keyword : tree.keywords)
        keywords[keyword.parentID].push_back(&keyword);
    printKeywords(context, keywords, std::nullopt, 0);
    for (const auto& person : tree.people)
        context.print(
            fmt::format("person:{}  {} ({})", person.id, person.name, counted(total(person.count), "photo")));
}

/// What the commands on projects, albums and keywords take.
struct TreeArguments {
    std::int64_t id = 0;
    std::string name;
    ParentID parent;
    PhotoArguments photos;
};

void addName(CLI::App& sub, TreeArguments& arguments)
{
    sub.add_option("NAME", arguments.name, "the name")->required();
}

void addID(CLI::App& sub, TreeArguments& arguments)
{
    sub.add_option("ID", arguments.id, "its id")->required();
}

void addNameAndParent(CLI::App& sub, TreeArguments& arguments)
{
    addName(sub, arguments);
    sub.add_option("--parent", arguments.parent, "the id of what is to hold it");
}

void addIDAndName(CLI::App& sub, TreeArguments& arguments)
{
    addID(sub, arguments);
    addName(sub, arguments);
}

struct MoveArguments : TreeArguments {
    std::optional<std::int64_t> before;
};

void addMove(CLI::App& sub, MoveArguments& arguments)
{
    addID(sub, arguments);
    auto* const parent
        = sub.add_option("--parent", arguments.parent, "the project; without one it goes to the root");
    sub.add_option("--before", arguments.before, "the id of what it is to stand beside, just before it")
        ->excludes(parent);
}

/// The project of that id, below these.
const ProjectNode* projectIn(const std::vector<ProjectNode>& nodes, std::int64_t id)
{
    for (const auto& node : nodes) {
        const auto* const found = node.id == id ? &node : projectIn(node.children, id);
        if (found)
            return found;
    }
    return nullptr;
}

void moveProject(Context& context, const MoveArguments& moved)
{
    auto& catalog = context.library();
    if (!moved.before)
        return catalog.placeProject(moved.id, moved.parent, std::nullopt);
    const auto tree = treeIn(catalog.database(), {});
    const auto* const beside = projectIn(tree.projects, *moved.before);
    if (!beside)
        throw NotFoundError("project", *moved.before);
    catalog.placeProject(moved.id, beside->parentID, moved.before);
}

void moveAlbum(Context& context, const MoveArguments& moved)
{
    auto& catalog = context.library();
    if (!moved.before)
        return catalog.placeAlbum(moved.id, moved.parent, std::nullopt);
    const auto albums = treeIn(catalog.database(), {}).albums;
    const auto beside = std::ranges::find(albums, *moved.before, &AlbumRow::id);
    if (beside == albums.end())
        throw NotFoundError("album", *moved.before);
    catalog.placeAlbum(moved.id, beside->parentID, moved.before);
}

struct ProjectArguments : TreeArguments {
    std::string kind = "project";
};

void addProjectArguments(CLI::App& sub, ProjectArguments& arguments)
{
    addNameAndParent(sub, arguments);
    sub.add_option("--kind", arguments.kind, "project, album or folder")
        ->check(CLI::IsMember({"project", "album", "folder"}));
}

struct AssignArguments {
    std::string project; // an id, or "none"
    PhotoArguments photos;
};

void addAssignArguments(CLI::App& sub, AssignArguments& arguments)
{
    sub.add_option("PROJECT", arguments.project, "the project's id, or none")->required();
    addPhotos(sub, arguments.photos);
}

/// No project for "none".
ParentID projectID(const std::string& text)
{
    return text == "none" ? std::nullopt : ParentID(idOf(text, "project"));
}

ExitCode assign(Context& context, const AssignArguments& arguments)
{
    const auto project = projectID(arguments.project);
    return changePhotos(
        context, arguments.photos, [&](const auto& ids) { context.library().assignToProject(ids, project); });
}

void addProjectCommands(const Commands& project)
{
    project.add<ProjectArguments>(
        "create", "make a project", addProjectArguments, [](Context& context, const ProjectArguments& made) {
            context.printMade(context.library().createProject(made.name, made.kind, made.parent));
        });
    project.add<TreeArguments>("rename", "give a project another name", addIDAndName,
        [](Context& context, const TreeArguments& renamed) {
            context.library().renameProject(renamed.id, renamed.name);
        });
    project.add<MoveArguments>(
        "move", "move a project into another, out of all, or before another", addMove, moveProject);
    project.add<TreeArguments>("delete", "delete a project and those in it; photos and albums stay", addID,
        [](Context& context, const TreeArguments& deleted) { context.library().deleteProject(deleted.id); });
    project.add<AssignArguments>("assign", "put photos into a project", addAssignArguments, assign);
    project.add<TreeArguments>("gather", "put everything at the root under a new project", addName,
        [](Context& context, const TreeArguments& made) {
            context.printMade(context.library().gatherUnderProject(made.name));
        });
}

void addIDAndPlace(CLI::App& sub, TreeArguments& arguments)
{
    addID(sub, arguments);
    sub.add_option("DIR", arguments.name, "where it is now")->required();
}

void addFolderCommands(const Commands& folder)
{
    folder.add<TreeArguments>("remove", "take a folder and its photos out of the library; their files stay",
        addID,
        [](Context& context, const TreeArguments& removed) { context.library().removeFolder(removed.id); });
    folder.add<TreeArguments>("locate", "tell where a folder is now that was moved or renamed", addIDAndPlace,
        [](Context& context, const TreeArguments& located) {
            auto& database = context.library().database();
            folderMoved(database, located.id, findFolder(database, located.id, located.name).to);
        });
}

void addAlbumAndPhotos(CLI::App& sub, TreeArguments& arguments)
{
    sub.add_option("ALBUM", arguments.id, "the album's id")->required();
    addPhotos(sub, arguments.photos);
}

void addOrder(CLI::App& sub, MoveArguments& arguments)
{
    addAlbumAndPhotos(sub, arguments);
    sub.add_option("--before", arguments.before, "the photo before which they are to stand");
}

ExitCode orderInAlbum(Context& context, const MoveArguments& order)
{
    std::unordered_set<PhotoID> members;
    for (const auto& item :
        context.library().photos(context.existingSource("album:" + std::to_string(order.id))))
        members.insert(item.id);
    const auto isNoMember = [&](PhotoID photo) { return fmt::format("photo {} is not in the album", photo); };
    if (order.before && !members.contains(*order.before))
        throw std::invalid_argument(isNoMember(*order.before));
    auto ids = context.photos(order.photos);
    std::erase_if(ids, [&](PhotoID id) {
        if (members.contains(id))
            return false;
        context.fail(isNoMember(id));
        return true;
    });
    context.library().moveInAlbum(order.id, ids, order.before);
    return context.finish(ids.size(), Ended::whole);
}

void addAlbumCommands(const Commands& album)
{
    album.add<TreeArguments>(
        "create", "make an album", addNameAndParent, [](Context& context, const TreeArguments& made) {
            context.printMade(context.library().createAlbum(made.name, made.parent));
        });
    album.add<TreeArguments>("rename", "give an album another name", addIDAndName,
        [](Context& context, const TreeArguments& renamed) {
            context.library().renameAlbum(renamed.id, renamed.name);
        });
    album.add<TreeArguments>("delete", "delete an album; its photos stay", addID,
        [](Context& context, const TreeArguments& deleted) { context.library().deleteAlbum(deleted.id); });
    album.add<MoveArguments>(
        "move", "move an album into a project, out of all, or before another", addMove, moveAlbum);
    album.add<TreeArguments>(
        "add", "add photos to an album", addAlbumAndPhotos, [](Context& context, const TreeArguments& added) {
            return changePhotos(
                context, added.photos, [&](const auto& ids) { context.library().addToAlbum(added.id, ids); });
        });
    album.add<TreeArguments>("take", "take photos out of an album", addAlbumAndPhotos,
        [](Context& context, const TreeArguments& taken) {
            return changePhotos(context, taken.photos,
                [&](const auto& ids) { context.library().removeFromAlbum(taken.id, ids); });
        });
    album.add<MoveArguments>("order", "put photos of an album in this order before another, or behind all",
        addOrder, orderInAlbum);
}

void addKeywordCommands(const Commands& keyword)
{
    keyword.add<TreeArguments>(
        "create", "make a keyword", addNameAndParent, [](Context& context, const TreeArguments& made) {
            context.printMade(context.library().createKeyword(made.name, made.parent));
        });
    keyword.add<TreeArguments>("rename", "give a keyword another name, also in the photos that have it",
        addIDAndName, [](Context& context, const TreeArguments& renamed) {
            renameKeyword(context.library(), renamed.id, renamed.name);
        });
    keyword.add<TreeArguments>(
        "move", "move a keyword below another, or to the top",
        [](CLI::App& sub, TreeArguments& arguments) {
            addID(sub, arguments);
            sub.add_option("--parent", arguments.parent, "the keyword that is to hold it");
        },
        [](Context& context, const TreeArguments& moved) {
            context.library().moveKeyword(moved.id, moved.parent);
        });
    keyword.add<TreeArguments>("delete", "delete a keyword and those below it; photos keep theirs", addID,
        [](Context& context, const TreeArguments& deleted) { context.library().deleteKeyword(deleted.id); });
}

} // namespace

void addTreeCommands(const Commands& app)
{
    app.add("tree", "folders, projects, albums, keywords, people and totals", printTree);
    addFolderCommands(app.group("folder", "the folders that were added"));
    addProjectCommands(app.group("project", "projects"));
    addAlbumCommands(app.group("album", "albums"));
    addKeywordCommands(app.group("keyword", "the keyword tree"));
}

} // namespace korvo
