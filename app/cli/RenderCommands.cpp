#include "app/PhotoExport.h"
#include "app/SystemExifTool.h"
#include "app/cli/Commands.h"
#include "app/cli/PhotoOrFile.h"
#include "platform/linux/images/SystemImageReader.h"

#include <fmt/format.h>

namespace korvo {

namespace {

void print(const Context& context, const std::string& file, const ExportedPhoto& photo)
{
    if (!context.options().json)
        return context.print(fmt::format("{}  {} × {}", file, photo.width, photo.height));
    JsonWriter json;
    json.beginObject();
    json.member("path", file);
    json.member("width", photo.width);
    json.member("height", photo.height);
    if (!photo.note.empty())
        json.member("note", photo.note);
    json.endObject();
    context.print(json.take());
}

} // namespace

ExitCode renderCommand(Context& context, const RenderArguments& arguments)
{
    const auto photo = photoOrFile(context, arguments.photo, arguments.edits);
    const SystemExifTool system;
    SystemImageReader reader(*system.launcher, SystemImageReader::installedDecoder());
    Catalog* const library = context.libraryIfAny();
    const auto isOriginal
        = [&](const std::filesystem::path& file) { return library && library->isOriginal(file); };
    removeUnfinishedExports(std::filesystem::absolute(arguments.out).parent_path());
    const auto result = exportPhoto(reader, system.tool,
        {{photo.file, photo.edits, arguments.size}, arguments.out, arguments.quality}, isOriginal,
        context.stop());
    print(context, arguments.out, result);
    if (!result.note.empty() && !context.options().json)
        std::fprintf(stderr, "%s: %s\n", photo.file.c_str(), result.note.c_str());
    if (result.exifFailure)
        context.fail(arguments.out + ": the camera's EXIF could not be kept: " + *result.exifFailure);
    return context.finish(1);
}

} // namespace korvo
