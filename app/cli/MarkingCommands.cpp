#include "app/cli/Commands.h"
#include "base/Text.h"
#include "catalog/KeywordList.h"

#include <algorithm>
#include <stdexcept>

namespace korvo {

namespace {

struct RateArguments {
    int rating = 0;
    PhotoArguments photos;
};

ExitCode ratePhotos(Context& context, const RateArguments& arguments)
{
    if (arguments.rating < rejectedRating || arguments.rating > highestRating)
        throw std::invalid_argument("a rating is -1 (rejected), 0 (unrated) or 1 to 5 stars");
    return changePhotos(context, arguments.photos,
        [&](const auto& ids) { context.library().setRating(ids, arguments.rating); });
}

struct FlagArguments {
    bool off = false;
    PhotoArguments photos;
};

ExitCode flagPhotos(Context& context, const FlagArguments& arguments)
{
    return changePhotos(context, arguments.photos,
        [&](const auto& ids) { context.library().setFlagged(ids, !arguments.off); });
}

struct LabelArguments {
    std::string label;
    PhotoArguments photos;
};

ExitCode labelPhotos(Context& context, const LabelArguments& arguments)
{
    const auto label = labelNamed(arguments.label);
    if (!label)
        throw std::invalid_argument("\"" + arguments.label
            + "\" is no label: use none, red, orange, yellow, green, blue, purple, gray or 0 to 7");
    return changePhotos(
        context, arguments.photos, [&](const auto& ids) { context.library().setLabel(ids, *label); });
}

struct SetArguments {
    MetadataChange change;
    PhotoArguments photos;
};

struct FieldOption {
    const char* name;
    std::optional<SharedText> MetadataChange::*field;
};
constexpr FieldOption fieldOptions[]
    = {{"--title", &MetadataChange::title}, {"--caption", &MetadataChange::caption},
        {"--keywords", &MetadataChange::keywords}, {"--creator", &MetadataChange::creator},
        {"--copyright", &MetadataChange::copyright}, {"--alt", &MetadataChange::altText}};

void addFields(CLI::App& sub, SetArguments& arguments)
{
    for (const auto& [name, field] : fieldOptions)
        sub.add_option_function<std::string>(
            name,
            [&arguments, field](const std::string& text) { arguments.change.*field = SharedText(text); },
            "the new text");
    addPhotos(sub, arguments.photos);
}

ExitCode setFields(Context& context, const SetArguments& arguments)
{
    auto change = arguments.change;
    if (std::ranges::none_of(
            fieldOptions, [&](const auto& option) { return (change.*option.field).has_value(); }))
        throw std::invalid_argument("name at least one field, such as --title");
    if (change.keywords)
        change.keywords = SharedText(joinKeywords(splitKeywords(change.keywords->view())));
    return changePhotos(context, arguments.photos,
        [&](const auto& ids) { context.library().changeMetadata(ids, change, WriteBack::pending); });
}

} // namespace

void addMarkingCommands(const Commands& app)
{
    app.add<RateArguments>(
        "rate", "give stars: 0 to 5, or -1 to reject",
        [](CLI::App& sub, RateArguments& arguments) {
            sub.add_option("N", arguments.rating, "0 to 5, or -1 to reject")->required();
            addPhotos(sub, arguments.photos);
        },
        ratePhotos);
    app.add<FlagArguments>(
        "flag", "flag photos",
        [](CLI::App& sub, FlagArguments& arguments) {
            sub.add_flag("--off", arguments.off, "take the flag away");
            addPhotos(sub, arguments.photos);
        },
        flagPhotos);
    app.add<LabelArguments>(
        "label", "give a colour label",
        [](CLI::App& sub, LabelArguments& arguments) {
            sub.add_option("LABEL", arguments.label,
                   "none, red, orange, yellow, green, blue, purple, gray, or 0 to 7")
                ->required();
            addPhotos(sub, arguments.photos);
        },
        labelPhotos);
    app.add<SetArguments>("set", "change descriptive metadata: only the fields named", addFields, setFields);
}

} // namespace korvo
