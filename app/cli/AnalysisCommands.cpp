#include "app/SystemTools.h"
#include "app/cli/Commands.h"
#include "app/cli/PhotoOrFile.h"
#include "app/pictures/AutoAdjust.h"
#include "edits/HistogramData.h"

#include <fmt/format.h>

#include <cmath>
#include <stdexcept>

namespace korvo {

namespace {

constexpr int displaySize = 2048; // of the pictures that the histogram is made from

/// What is to be known of a picture.
void printNote(const std::filesystem::path& file, const std::string& note)
{
    if (!note.empty())
        printError(file.string() + ": " + note);
}

/// A channel as 64 bars, dark ones first.
std::string bars(const HistogramData::Heights& heights)
{
    static constexpr const char* heightsOfBars[]{" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    std::string line;
    for (const double height : heights)
        line += heightsOfBars[static_cast<std::size_t>(std::ceil(height * 8))];
    return line;
}

struct HistogramArguments {
    std::string photo;
    std::optional<std::string> edits; // JSON, or "@" and the name of a file that holds it
};

void addHistogramArguments(CLI::App& sub, HistogramArguments& arguments)
{
    sub.add_option("PHOTO", arguments.photo, "a photo's id, or a file")->required();
    sub.add_option("--edits", arguments.edits, "other edits than the photo's: JSON, or @FILE");
}

void printHistogram(Context& context, const HistogramArguments& arguments)
{
    const auto photo = photoOrFile(context, arguments.photo, arguments.edits);
    SystemTools tools;
    const auto rendered = renderPhoto(tools.reader, {photo.file, photo.edits, displaySize}, context.stop());
    printNote(photo.file, rendered.note);
    const HistogramData data = histogram(rendered.image);
    if (context.options().json)
        context.print(toJson(data));
    else
        forEachField<HistogramData>([&](const auto& field) {
            context.print(fmt::format("{:<10}|{}|", field.name, bars(data.*field.member)));
        });
}

struct EnhanceArguments {
    std::string photo;
    bool apply = false;
};

void addEnhanceArguments(CLI::App& sub, EnhanceArguments& arguments)
{
    sub.add_option("PHOTO", arguments.photo, "a photo's id, or a file")->required();
    sub.add_flag("--apply", arguments.apply, "store the values in the photo's edits");
}

void enhance(Context& context, const EnhanceArguments& arguments)
{
    auto photo = photoOrFile(context, arguments.photo, {});
    if (arguments.apply && !photo.photo)
        throw std::invalid_argument("--apply needs a photo of the library");
    SystemTools tools;
    const auto look = autoLook(tools.reader, photo.file, context.stop());
    printNote(photo.file, look.note);
    if (!look.values)
        throw std::runtime_error("there is nothing to see in " + photo.file.string());
    const auto& values = *look.values;
    if (context.options().json)
        context.print(toJson(values));
    else
        forEachField<AutoEnhance::Values>([&](const auto& field) {
            context.print(fmt::format("{:<10} {:g}", field.name, values.*field.member));
        });
    if (arguments.apply) {
        AutoEnhance::apply(values, AutoEnhance::Fields::all, photo.edits);
        context.library().saveEdits(std::vector{*photo.photo}, photo.edits);
    }
}

} // namespace

void addAnalysisCommands(const Commands& app)
{
    app.add<HistogramArguments>(
        "histogram", "the tones of a photo with its edits", addHistogramArguments, printHistogram);
    app.add<EnhanceArguments>(
        "enhance", "what auto enhance proposes for a photo", addEnhanceArguments, enhance);
}

} // namespace korvo
