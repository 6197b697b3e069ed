#include "app/cli/Commands.h"
#include "app/cli/PhotoOrFile.h"
#include "app/cli/PhotoOutput.h"
#include "base/Text.h"

#include <algorithm>
#include <stdexcept>

namespace korvo {

namespace {

void printPhoto(const Context& context, const PhotoItem& item)
{
    context.print(context.options().json ? photoJSON(item) : photoLine(item));
}

PhotoLabel labelNamed(const std::string& text)
{
    for (std::int64_t number = 0; const auto label = photoLabel(number); ++number)
        if (text == std::to_string(number) || compareNoCase(text, name(*label)) == 0
            || (label == PhotoLabel::none && compareNoCase(text, "none") == 0))
            return *label;
    throw std::invalid_argument(
        "\"" + text + "\" is no label: use none, red, orange, yellow, green, blue, purple, gray or 0 to 7");
}

} // namespace

ExitCode listCommand(Context& context, const ListArguments& arguments)
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

ExitCode showCommand(Context& context, PhotoID photo)
{
    const auto item = existingPhoto(context, photo);
    context.print(context.options().json ? photoJSON(item) : photoText(item));
    return ExitCode::done;
}

ExitCode rateCommand(Context& context, int rating, const PhotoArguments& photos)
{
    if (rating < rejectedRating || rating > highestRating)
        throw std::invalid_argument("a rating is -1 (rejected), 0 (unrated) or 1 to 5 stars");
    return changePhotos(context, photos, [&](const auto& ids) { context.library().setRating(ids, rating); });
}

ExitCode flagCommand(Context& context, bool flagged, const PhotoArguments& photos)
{
    return changePhotos(
        context, photos, [&](const auto& ids) { context.library().setFlagged(ids, flagged); });
}

ExitCode labelCommand(Context& context, const std::string& label, const PhotoArguments& photos)
{
    const auto value = labelNamed(label);
    return changePhotos(context, photos, [&](const auto& ids) { context.library().setLabel(ids, value); });
}

ExitCode setCommand(Context& context, const MetadataChange& metadata, const PhotoArguments& photos)
{
    if (!metadata.altText && !metadata.title && !metadata.caption && !metadata.keywords && !metadata.creator
        && !metadata.copyright)
        throw std::invalid_argument("name at least one field, such as --title");
    return changePhotos(context, photos,
        [&](const auto& ids) { context.library().changeMetadata(ids, metadata, WriteBack::pending); });
}

ExitCode editsCommand(Context& context, const EditsArguments& arguments)
{
    const auto item = existingPhoto(context, arguments.photo);
    if (arguments.clear || arguments.set) {
        const auto edits = arguments.clear ? PhotoEdits() : fromJson<PhotoEdits>(textOrFile(*arguments.set));
        context.library().saveEdits(std::vector{item.id}, edits);
        return ExitCode::done;
    }
    context.print(toJson(item.edits()));
    return ExitCode::done;
}

ExitCode removeCommand(Context& context, const PhotoArguments& photos)
{
    return changePhotos(context, photos, [&](const auto& ids) { context.library().deletePhotos(ids); });
}

} // namespace korvo
