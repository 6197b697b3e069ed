#include "app/PhotoRender.h"
#include "app/cli/Commands.h"
#include "app/cli/PhotoOrFile.h"
#include "edits/AutoEnhance.h"
#include "edits/HistogramData.h"
#include "platform/linux/images/SystemImageReader.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace korvo {

namespace {

constexpr int displaySize = 2048; // of the pictures that the histogram is made from
constexpr int analysisSize = 512; // of those that auto enhance looks at

/// The picture with its edits, and on standard error what is to be known of it.
Bitmap rendered(Context& context, const std::filesystem::path& file, const PhotoEdits& edits, int size)
{
    const auto launcher = systemProcessLauncher();
    SystemImageReader reader(*launcher, SystemImageReader::installedDecoder());
    auto result = renderPhoto(reader, {file, edits, size}, context.stop());
    if (!result.note.empty())
        std::fprintf(stderr, "%s: %s\n", file.c_str(), result.note.c_str());
    return std::move(result.image);
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

} // namespace

ExitCode histogramCommand(Context& context, const HistogramArguments& arguments)
{
    const auto photo = photoOrFile(context, arguments.photo, arguments.edits);
    const HistogramData data = histogram(rendered(context, photo.file, photo.edits, displaySize));
    if (context.options().json)
        context.print(toJson(data));
    else
        forEachField<HistogramData>([&](const auto& field) {
            context.print(fmt::format("{:<10}|{}|", field.name, bars(data.*field.member)));
        });
    return ExitCode::done;
}

ExitCode enhanceCommand(Context& context, const EnhanceArguments& arguments)
{
    auto photo = photoOrFile(context, arguments.photo, {});
    if (arguments.apply && !photo.photo)
        throw std::invalid_argument("--apply needs a photo of the library");
    // The photo as it was taken is analysed, whatever its edits are: the proposal is a baseline.
    const auto statistics = AutoEnhance::statistics(rendered(context, photo.file, {}, analysisSize));
    if (!statistics)
        throw std::runtime_error("there is nothing to see in " + photo.file.string());
    const auto values = AutoEnhance::values(*statistics);
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
    return ExitCode::done;
}

} // namespace korvo
