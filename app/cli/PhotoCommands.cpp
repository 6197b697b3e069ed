#include "app/cli/Commands.h"
#include "app/cli/PhotoOrFile.h"
#include "app/cli/PhotoOutput.h"
#include "catalog/GridOrder.h"
#include "catalog/Versions.h"

#include <fmt/ranges.h>

#include <algorithm>

namespace korvo {

namespace {

struct ListArguments {
    std::string source = "all";
    std::optional<SortKey> sort;
    std::optional<GridFilter> filter;
};

/// Adds an option that is one of the names; another word is refused with all of them.
template <NamedEnum E>
CLI::Option* addChoice(CLI::App& sub, const char* option, const char* noun, std::optional<E>& choice)
{
    std::vector<std::string_view> names;
    std::ranges::transform(casesOf<E>, std::back_inserter(names), &EnumCase<E>::name);
    const auto all = fmt::format("{}", fmt::join(names, ", "));
    const auto take = [=, &choice](const std::string& text) {
        choice = caseNamed<E>(text);
        if (!choice)
            throw CLI::ValidationError(fmt::format("\"{}\" is no {}: use {}", text, noun, all));
    };
    return sub.add_option_function<std::string>(option, take, all);
}

void addListArguments(CLI::App& sub, ListArguments& arguments)
{
    sub.add_option("--source", arguments.source, sourceNames());
    addChoice(sub, "--sort", "sort key", arguments.sort)->type_name("KEY");
    addChoice(sub, "--filter", "filter", arguments.filter)->type_name("FILTER");
}

void printPhoto(const Context& context, const PhotoItem& item)
{
    context.print(context.options().json ? photoJSON(item) : photoLine(item));
}

ExitCode listPhotos(Context& context, const ListArguments& arguments)
{
    const auto source = context.existingSource(arguments.source);
    const auto shows
        = [&](const PhotoItem& item) { return !arguments.filter || passes(item, *arguments.filter); };
    if (!arguments.sort) { // in the source's own order nothing has to be held
        context.library().forEachPhoto(source, [&](PhotoItem&& item) {
            if (shows(item))
                printPhoto(context, item);
            return !context.isStopped();
        });
        return context.finish(1);
    }
    const auto items = context.library().photos(source);
    const auto order
        = gridOrder(items, listed(items, ListedBy::hand), arguments.sort, testOf(arguments.filter));
    for (const auto position : order) {
        if (context.isStopped())
            break;
        printPhoto(context, items[position]);
    }
    return context.finish(1);
}

void addPhotoID(CLI::App& sub, PhotoID& photo)
{
    sub.add_option("ID", photo, "the photo")->required();
}

void showPhoto(Context& context, PhotoID photo)
{
    const auto item = existingPhoto(context, photo);
    context.print(context.options().json ? photoJSON(item) : photoText(item));
}

struct EditsArguments {
    PhotoID photo = 0;
    std::optional<std::string> set; // JSON, or "@" and the name of a file that holds it
    bool clear = false;
};

void addEditsArguments(CLI::App& sub, EditsArguments& arguments)
{
    addPhotoID(sub, arguments.photo);
    auto* const set = sub.add_option("--set", arguments.set, "the new record as JSON, or @FILE");
    sub.add_flag("--clear", arguments.clear, "back to no edits")->excludes(set);
}

void showOrStoreEdits(Context& context, const EditsArguments& arguments)
{
    const auto item = existingPhoto(context, arguments.photo);
    if (!arguments.clear && !arguments.set)
        return context.print(toJson(item.edits()));
    const auto edits = arguments.clear ? PhotoEdits() : fromJson<PhotoEdits>(textOrFile(*arguments.set));
    context.library().saveEdits(std::vector{item.id}, edits);
}

struct VersionArguments {
    PhotoID photo = 0;
    std::optional<std::string> name;
};

void createVersion(Context& context, const VersionArguments& arguments)
{
    context.printMade(createVersion(
        context.library(), arguments.photo, arguments.name, std::nullopt, context.clock().now()));
}

void listVersions(Context& context, PhotoID photo)
{
    if (!context.library().contains(photo))
        throw NotFoundError("photo", photo);
    for (const auto& version : versionsOf(context.library(), photo))
        context.print(context.options().json
                ? photoJSON(version)
                : fmt::format("{}  {}", photoLine(version), version.versionName.view()));
}

void addVersionCommands(const Commands& version)
{
    version.add<VersionArguments>(
        "create", "make a version of a photo",
        [](CLI::App& sub, VersionArguments& arguments) {
            addPhotoID(sub, arguments.photo);
            sub.add_option("--name", arguments.name, "its name; \"Version 2\" and so on without one");
        },
        createVersion);
    version.add<VersionArguments>(
        "rename", "give a version another name",
        [](CLI::App& sub, VersionArguments& arguments) {
            addPhotoID(sub, arguments.photo);
            sub.add_option("NAME", arguments.name, "the name")->required();
        },
        [](Context& context, const VersionArguments& renamed) {
            renameVersion(context.library(), renamed.photo, *renamed.name);
        });
    version.add<PhotoID>("list", "the versions of a photo, oldest first", addPhotoID, listVersions);
}

} // namespace

void addPhotoCommands(const Commands& app)
{
    app.add<ListArguments>("list", "the photos of a source", addListArguments, listPhotos);
    app.add<PhotoID>("show", "one photo with all it holds", addPhotoID, showPhoto);
    app.add<EditsArguments>("edits", "a photo's edit record", addEditsArguments, showOrStoreEdits);
    app.add<PhotoArguments>("remove", "take photos out of the library; their files stay", addPhotos,
        [](Context& context, const PhotoArguments& photos) {
            return changePhotos(
                context, photos, [&](const auto& ids) { context.library().deletePhotos(ids); });
        });
    addVersionCommands(app.group("version", "versions: further renderings of a photo's file"));
}

} // namespace korvo
