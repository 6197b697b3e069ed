#include "app/SystemTools.h"
#include "app/cli/Commands.h"
#include "app/cli/PhotoOrFile.h"
#include "app/pictures/PhotoExport.h"

#include <fmt/format.h>

namespace korvo {

namespace {

struct RenderArguments {
    std::string photo; // an id, or a file
    std::string out;
    std::optional<std::string> edits; // JSON, or "@" and the name of a file that holds it
    int size = 0; // pixels of the longer side; 0: all
    int quality = 90;
};

void addRenderArguments(CLI::App& sub, RenderArguments& render)
{
    sub.add_option("PHOTO", render.photo, "a photo's id, or a file")->required();
    sub.add_option("--out", render.out, "where to: .jpg, .png, .webp or .tif")->required();
    sub.add_option("--edits", render.edits, "other edits than the photo's: JSON, or @FILE");
    sub.add_option("--size", render.size, "the most pixels of the longer side")
        ->check(CLI::Range(1, 1'000'000));
    sub.add_option("--quality", render.quality, "of JPEG and WebP, 1 to 100; 90 unless given")
        ->check(CLI::Range(1, 100));
}

struct RenderedFile {
    std::string path;
    int width;
    int height;
    std::optional<std::string> note;
};
KORVO_RECORD(RenderedFile, path, width, height, note)

/// Without the library nobody knows which files are its originals.
void refuseUnlessNew(const std::filesystem::path& out, const std::filesystem::path& library)
{
    std::error_code unreadable; // may be there, then
    if (std::filesystem::symlink_status(out, unreadable).type() != std::filesystem::file_type::not_found)
        throw std::runtime_error(out.string() + " is there already, and might be an original of the library "
            + library.string() + ", which cannot be seen: connect its disk, or write to another name");
}

ExitCode renderToFile(Context& context, const RenderArguments& arguments)
{
    const auto photo = photoOrFile(context, arguments.photo, arguments.edits);
    SystemTools tools;
    Catalog* const library = context.libraryIfAny();
    const auto isOriginal
        = [&](const std::filesystem::path& file) { return library && library->isOriginal(file); };
    if (const auto away = context.awayLibrary())
        refuseUnlessNew(arguments.out, *away);
    removeUnfinishedExports(std::filesystem::absolute(arguments.out).parent_path());
    const auto position = photo.photo ? exportedPosition(existingPhoto(context, *photo.photo), Position::keep)
                                      : ExportedPosition();
    const auto result = exportPhoto(tools.reader, tools.exifTool,
        {{photo.file, photo.edits, arguments.size}, arguments.out, arguments.quality, position, {}},
        isOriginal, context.stop());
    const auto note = result.note.empty() ? std::nullopt : std::optional(result.note);
    context.print(RenderedFile{arguments.out, result.width, result.height, note},
        fmt::format("{}  {} × {}", arguments.out, result.width, result.height));
    if (note && !context.options().json)
        printError(photo.file.string() + ": " + *note);
    if (result.exifFailure)
        context.fail(arguments.out + ": the camera's EXIF could not be kept: " + *result.exifFailure);
    return context.finish(1);
}

} // namespace

void addRenderCommands(const Commands& app)
{
    app.add<RenderArguments>(
        "render", "a photo with its edits, as a file of its own", addRenderArguments, renderToFile);
}

} // namespace korvo
