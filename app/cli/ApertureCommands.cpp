#include "aperture/PlistJson.h"
#include "app/ImportAperture.h"
#include "app/SystemTools.h"
#include "app/cli/Commands.h"
#include "app/pictures/RenderMatch.h"
#include "platform/PosixFile.h"

namespace korvo {

/// An object with a count for each name. Found by its writer, as all are, which looks into no namespace
/// below.
static void writeJson(JsonWriter& json, const std::map<std::string, std::int64_t>& counts)
{
    json.beginObject();
    for (const auto& [name, count] : counts)
        json.member(name, count);
    json.endObject();
}

namespace {

struct PlistArguments {
    std::filesystem::path file;
    bool unarchive = false;
};

void addPlistArguments(CLI::App& sub, PlistArguments& arguments)
{
    sub.add_option("FILE", arguments.file, "the property list")->required();
    sub.add_flag("--unarchive", arguments.unarchive,
        "the root object of the keyed archive in it, as plain values; null when there is none");
}

void printPlist(Context& context, const PlistArguments& arguments)
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
}

struct ApertureArguments {
    std::filesystem::path bundle;
    std::optional<std::filesystem::path> into;
    bool matchRenders = false;
    std::vector<std::string> volumes; // NAME=DIR
};

void addApertureArguments(CLI::App& sub, ApertureArguments& arguments)
{
    sub.add_option("BUNDLE", arguments.bundle, "the Aperture library")->required();
    sub.add_option(
        "--into", arguments.into, "the library folder, new or not; without it a new one beside the bundle");
    sub.add_flag("--match-renders", arguments.matchRenders,
        "fit a tone curve to each photo that brings it close to Aperture's own render");
    sub.add_option("--volume", arguments.volumes,
           "NAME=DIR: where the volume of that name is, on which referenced files lie")
        ->allow_extra_args(false);
}

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

/// What came in, and after it the library.
std::string summaryJSON(const ApertureImported& imported)
{
    JsonWriter json;
    json.beginObject();
    forEachField<ApertureImporter::Summary>(
        [&](const auto& field) { json.member(field.name, imported.summary.*field.member); });
    json.member("library", imported.library.native());
    json.endObject();
    return json.take();
}

void printSummary(const Context& context, const ApertureImported& imported, Matching matching)
{
    if (context.options().json)
        return context.print(summaryJSON(imported));
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

ExitCode importBundle(Context& context, const ApertureArguments& arguments)
{
    SystemTools tools;
    ApertureImport request{arguments.bundle, arguments.into, volumesOf(arguments.volumes), {}};
    if (arguments.matchRenders)
        request.match = matchBy(tools.reader, context.stop());
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

} // namespace

void addApertureCommands(const Commands& app)
{
    app.add<PlistArguments>("plist", "a binary property list as JSON", addPlistArguments, printPlist);
    app.add<ApertureArguments>("import-aperture", "import an Aperture library, which is not changed",
        addApertureArguments, importBundle);
}

} // namespace korvo
