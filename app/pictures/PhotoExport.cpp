#include "app/pictures/PhotoExport.h"

#include "metadata/DescriptiveReader.h"
#include "metadata/ExifReader.h"
#include "platform/ApertureBundles.h"
#include "platform/FileSync.h"
#include "platform/PartFile.h"

#include <chrono>

namespace korvo {

namespace fs = std::filesystem;

namespace {

PictureFormat formatOf(const fs::path& file)
{
    if (const auto format = pictureFormat(file))
        return *format;
    throw std::invalid_argument(file.string() + ": the name must end in .jpg, .png, .webp or .tif");
}

/// Where a file is to stand: its folder without links, its name as it was given.
fs::path placeOf(const fs::path& destination)
{
    const auto absolute = fs::absolute(destination);
    return fs::weakly_canonical(absolute.parent_path()) / absolute.filename();
}

using IsOriginal = std::function<bool(const fs::path&)>;

/// Where a file is to stand. Refuses to write over a photo, by whatever name it is called.
fs::path checkedPlace(const fs::path& photo, const fs::path& destination, const IsOriginal& isOriginal)
{
    const auto place = placeOf(destination);
    const auto refuse = [&](const char* why) { throw std::runtime_error(destination.string() + ": " + why); };
    std::error_code absent; // a file that is not there is not the photo's
    if (fs::equivalent(place, photo, absent) || isOriginal(place)
        || isOriginal(fs::absolute(destination).lexically_normal()))
        refuse("is an original photo, which is never written over");
    if (fs::is_symlink(place, absent))
        refuse("is a link, which may lead to an original photo; name the file that it leads to");
    if (ApertureBundles().hold(place))
        refuse("lies in an Aperture library, which is never changed");
    return place;
}

constexpr std::string_view unfinishedStart = ".korvo-export-";

void put(PartFile& file, fs::path place, const ExportJob& job, const IsOriginal& isOriginal)
{
    if (!job.otherwise)
        return file.moveOver(place);
    syncFile(file.path());
    while (!file.moveTo(place))
        place = checkedPlace(job.render.file, job.otherwise(), isOriginal);
    syncFolder(place.parent_path());
}

} // namespace

ExportedPosition exportedPosition(const PhotoItem& photo, Position wish)
{
    if (wish == Position::strip)
        return {Position::strip, {}};
    const bool isKnown = photo.latitude && photo.longitude;
    if (!isKnown && photo.gpsRead)
        return {Position::strip, {}};
    const auto inFile = readGPS(photo.path()); // which may be its XMP, that is not copied
    if (!isKnown)
        return {Position::keep, inFile};
    const Coordinate own{*photo.latitude, *photo.longitude};
    const bool isFiles = inFile && isSamePlace(*inFile, own); // whose altitude and direction hold then, too
    return {isFiles ? Position::keep : Position::strip, own};
}

ExportedPhoto exportPhoto(ImageReader& reader, const ExifTool& tool, const ExportJob& job,
    const IsOriginal& isOriginal, const std::stop_token& stop)
{
    const auto format = formatOf(job.destination);
    const auto place = checkedPlace(job.render.file, job.destination, isOriginal);
    const auto photo = encodePhoto(reader, job.render, format, job.quality, stop);
    ExportedPhoto result{photo.width, photo.height, photo.note, {}};
    auto file = PartFile::beginHidden(place.parent_path(), unfinishedStart, place.extension().native());
    file.write(Bytes(photo.bytes));
    if (job.position.own || hasExif(job.render.file))
        try {
            tool.run(exportedExifArguments(
                         fs::absolute(job.render.file), file.path(), photo.width, photo.height, job.position),
                stop);
        } catch (const ExifToolError& error) { // the picture itself is whole
            if (stop.stop_requested())
                throw; // it is we who ended the tool
            result.exifFailure = error.textForUser();
        }
    put(file, place, job, isOriginal);
    return result;
}

void removeUnfinishedExports(const fs::path& folder)
{
    // Their age tells, no lock: the tool that copies the EXIF puts a file of its own in place of the locked
    // one, and leaves another when it is killed.
    constexpr std::chrono::days longest(1); // that writing one picture may take
    const auto now = fs::file_time_type::clock::now();
    std::error_code unknown; // what cannot be listed, dated or removed stays as it is
    for (fs::directory_iterator entries(folder, unknown), end; entries != end; entries.increment(unknown))
        if (const auto& path = entries->path(); path.filename().native().starts_with(unfinishedStart)) {
            std::error_code undated;
            const auto written = fs::last_write_time(path, undated);
            if (!undated && now - written > longest)
                fs::remove(path, undated);
        }
}

} // namespace korvo
