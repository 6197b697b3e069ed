#include "aperture/PlistJson.h"
#include "app/ImportAperture.h"
#include "app/RenderMatch.h"
#include "app/cli/Commands.h"
#include "platform/PosixFile.h"
#include "platform/linux/images/SystemImageReader.h"

namespace korvo {

ExitCode plistCommand(Context& context, const PlistArguments& arguments)
{
    const auto contents = readWholeFile(arguments.file);
    const Bytes bytes(contents);
    JsonWriter json;
    try {
        // An archive without a root is null.
        const auto list = arguments.unarchive ? BinaryPlist::unarchive(bytes).value_or(BinaryPlist())
                                              : BinaryPlist::parse(bytes);
        writeJson(json, list.root());
    } catch (const BinaryPlist::ParseError& error) {
        throw std::runtime_error(arguments.file.string() + ": " + error.what());
    }
    context.print(json.take());
    return ExitCode::done;
}

namespace {

std::map<std::string, std::filesystem::path> volumesOf(const std::vector<std::string>& arguments)
{
    std::map<std::string, std::filesystem::path> volumes;
    for (const auto& argument : arguments) {
        const auto equals = argument.find('=');
        if (equals == 0 || equals == argument.npos)
            throw std::invalid_argument("\"" + argument + "\" is no volume: NAME=DIR");
        volumes[argument.substr(0, equals)] = argument.substr(equals + 1);
    }
    return volumes;
}

using Counts = std::map<std::string, std::int64_t>;

void writeCounts(JsonWriter& json, std::string_view name, const Counts& counts)
{
    json.key(name);
    json.beginObject();
    for (const auto& [operation, count] : counts)
        json.member(operation, count);
    json.endObject();
}

std::string summaryJSON(const ApertureImported& imported)
{
    const auto& summary = imported.summary;
    JsonWriter json;
    json.beginObject();
    json.member("catalogExists", summary.catalogExists);
    json.member("alreadyImported", summary.alreadyImported);
    json.member("masters", summary.masters);
    json.member("versions", summary.versions);
    json.member("missingFiles", summary.missingFiles);
    json.member("albums", summary.albums);
    json.member("projects", summary.projects);
    json.member("smartAlbums", summary.smartAlbums);
    json.member("smartAlbumsAsPlain", summary.smartAlbumsAsPlain);
    json.member("stacks", summary.stacks);
    json.member("adjustedVersions", summary.adjustedVersions);
    json.member("matchedToPreview", summary.matchedToPreview);
    json.key("report");
    json.beginObject();
    writeCounts(json, "unsupported", summary.report.unsupported);
    writeCounts(json, "approximated", summary.report.approximated);
    json.endObject();
    json.member("library", imported.library.native());
    json.endObject();
    return json.take();
}

void printSummary(const Context& context, const ApertureImported& imported, Matching matching)
{
    if (context.options().json) {
        context.print(summaryJSON(imported));
        return;
    }
    context.print(imported.library.string());
    context.print(summaryText(imported.summary, matching));
    for (const auto& note : translationNotes(imported.summary.report))
        context.print(note);
}

/// A bar for each phase of the import.
class PhaseProgress {
public:
    explicit PhaseProgress(Progress::Mode mode) : mode_(mode) { }

    void show(const ApertureImporter::Progress& progress)
    {
        if (progress.phase != phase_) {
            bar_.reset(); // before the next one takes the line
            phase_ = progress.phase;
            bar_ = std::make_unique<Progress>(phase_, mode_);
        }
        if (progress.total > 0)
            bar_->setTotal(progress.total);
        bar_->setDone(progress.done);
    }

private:
    Progress::Mode mode_;
    std::string phase_;
    std::unique_ptr<Progress> bar_;
};

} // namespace

ExitCode importApertureCommand(Context& context, const ApertureArguments& arguments)
{
    const auto launcher = systemProcessLauncher();
    SystemImageReader reader(*launcher, SystemImageReader::installedDecoder());
    ApertureImport request{arguments.bundle, arguments.into, volumesOf(arguments.volumes), {}};
    if (arguments.matchRenders)
        request.match = [&](const auto& original, const auto& edits, const auto& preview) {
            return matchRender(reader, original, edits, preview, context.stop());
        };
    std::optional<ApertureImported> imported;
    {
        PhaseProgress phases(context.progressMode());
        imported = importAperture(
            request, context.clock(), context.defaults(),
            [&](const ApertureImporter::Progress& progress) { phases.show(progress); }, context.stop());
    }
    if (!imported)
        return ExitCode::interrupted;
    printSummary(context, *imported, arguments.matchRenders ? Matching::on : Matching::off);
    return ExitCode::done;
}

} // namespace korvo
